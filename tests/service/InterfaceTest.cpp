// SPDX-License-Identifier: MIT
#include "tests/service/ServerProgram.h"

/// What the client asks for, of each program that answers it.
class InterfaceTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data()
    {
        QTest::addColumn<QString>("program");
        QTest::newRow("demo") << "demo"_s;
        QTest::newRow("server") << "server"_s;
    }

    void init()
    {
        QFETCH_GLOBAL(QString, program);
        if (!running.contains(program)) {
            running[program] = programNamed(program);
            QVERIFY(running[program]->start());
        }
        tested = running[program];
        client.profile = tested->profile();
        session = client.signIn(tested->account());
        QVERIFY(!session.isEmpty());
    }

    /// "[account]" signs in; "[s]" is a session.
    void requests_data()
    {
        rows<QByteArray, QString, QByteArray, QByteArray, QByteArray>(
            {"method", "path", "body", "type", "outcome"},
            {{"sign-in", "POST", "/public/sessions", "[account]", "form", "200 0"},
             {"wrong password", "POST", "/public/sessions", "[account]n", "form", "403 10001"},
             {"nothing to sign in with", "POST", "/public/sessions", "", "form", "400 10003"},
             {"no form", "POST", "/public/sessions", "[account]", "json", "400 10003"},
             {"sign-out", "DELETE", "/public/sessions/[s]", "", "form", "200 0"},
             {"sign-out of nobody", "DELETE", "/public/sessions/no", "", "form", "404 10002"},
             {"version", "GET", "/public/version/client_windows", "", "form", "200 0"},
             {"roster", "GET", "/public/roster?sessionId=[s]", "", "form", "200 0"},
             {"without a session", "GET", "/public/roster?sessionId=", "", "form", "403 10002"},
             {"layouts", "GET", "//layouts?sessionId=[s]", "", "form", "200 0"},
             {"one slash", "GET", "/layouts?sessionId=[s]", "", "form", "404 10004"},
             {"no list", "POST", "//layouts?sessionId=[s]", "{}", "json", "400 10003"},
             {"torn list", "POST", "//layouts?sessionId=[s]", "[1", "json", "400 10003"},
             {"nobody's list", "POST", "//layouts?sessionId=no", "[]", "json", "403 10002"}});
    }

    void requests()
    {
        auto [method, path, body, type, outcome] =
            row<QByteArray, QString, QByteArray, QByteArray, QByteArray>();
        const Answer answer =
            client.ask(client.api(path.replace("[s]"_s, session)), method,
                       body.replace("[account]", tested->account()),
                       type == "json" ? ServiceClient::jsonType : ServiceClient::formType);
        QCOMPARE(QByteArray::number(answer.status) + ' ' + QByteArray::number(answer.code()),
                 outcome);
        const Answer roster = client.ask(client.api("/public/roster?sessionId="_s + session));
        QCOMPARE(roster.code(), method == "DELETE" && outcome == "200 0" ? 10002 : 0);
    }

    void layoutsAndSessionsOutliveTheProgram()
    {
        const QString address = client.api("//layouts?sessionId="_s + session);
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        const QByteArray list =
            "[{\"cameras\":[],\"columns\":2,\"id\":\"x\",\"name\":\"Двор\",\"rows\":1}]";
        QCOMPARE(client.ask(address, "POST", list, ServiceClient::jsonType).code(), 0);
        QVERIFY(tested->start());
        const QJsonObject stored = client.ask(address).response();
        QVERIFY(stored["last_update"].toInt() >= before);
        QCOMPARE(stored["layouts"].toArray(), QJsonDocument::fromJson(list).array());
    }

    /// Of a LAN camera with the records [0, 5) and [8, 12), in seconds since `begin`. "[p]" is the
    /// password, "[c]" the camera, "[8]" that second and "[8ms]" its millisecond.
    void lan_data()
    {
        rows<QString, int, QByteArray>(
            {"target", "status", "body"},
            {{"server", "/vs_info/?server=1&sessionId=[p]", 200, "arc_search"},
             {"cameras", "/streams/info?server=1&sessionId=[p]", 200, "\"vcodec\":\"h264\""},
             {"preview", "/preview/live?server=1&camera=[c]&sessionId=[p]&q=0", 200, "\xff\xd8"},
             {"by its address", "/preview/live?server=[a]&camera=[c]&sessionId=[p]", 200,
              "\xff\xd8"},
             {"two slashes", "//preview/live?server=1&camera=[c]&sessionId=[p]", 404, ""},
             {"other server", "/vs_info/?server=2&sessionId=[p]", 404, ""},
             {"wrong password", "/vs_info/?server=1&sessionId=no", 403, ""},
             {"and for a preview", "/preview/live?server=1&camera=[c]&sessionId=no", 403, ""},
             {"and for a stream of none", "/flv/live?server=1&camera=99&sessionId=no", 403, ""},
             {"no such camera", "/flv/live?server=1&camera=99&sessionId=[p]", 404, ""},
             {"list", "/archive/list?[q]&startTime=[1]&endTime=[9]", 200, "\"duration\":4000"},
             {"days", "/archive/days?[q]&startTime=[1]&endTime=[9]", 200, "\"recordsCount\":2"},
             {"list that ends first", "/archive/list?[q]&startTime=[9]&endTime=[1]", 400, ""},
             {"played", "/flv/archive?[q]&startTime=[8]&speed=8", 200, "FLV\x01"},
             {"played in a gap", "/flv/archive?[q]&startTime=[6]&speed=1", 404, ""},
             {"played from never", "/flv/archive?[q]&startTime=x&speed=1", 400, ""},
             {"export", "/flv/archive?[q]&startTime=[1ms]&endTime=[9ms]", 200, "onMetaData"},
             {"export of a gap", "/flv/archive?[q]&startTime=[6ms]&endTime=[7ms]", 404, ""},
             {"export without end", "/flv/archive?[q]&startTime=[1ms]&endTime=-1", 400, ""}});
    }

    void lan()
    {
        auto [target, status, body] = row<QString, int, QByteArray>();
        const qint64 begin = QDateTime::currentSecsSinceEpoch() / 3600 * 3600 - 7200;
        QVERIFY(tested->record(
            {{begin * 1000, begin * 1000 + 5000}, {begin * 1000 + 8000, begin * 1000 + 12'000}}));
        target.replace("[q]"_s, "server=1&camera=[c]&sessionId=[p]"_s);
        target.replace("[c]"_s, QString::number(tested->lanCamera()));
        target.replace("[p]"_s, tested->lanPassword()).replace("[a]"_s, tested->lanAddress());
        for (const int second : {1, 6, 7, 8, 9}) {
            target.replace("[%1]"_s.arg(second), QString::number(begin + second));
            target.replace("[%1ms]"_s.arg(second), QString::number((begin + second) * 1000));
        }
        const Answer answer = client.ask("http://"_s + tested->lanAddress() + target);
        QCOMPARE(answer.status, status);
        QVERIFY2(answer.body.left(600).contains(body), answer.body.left(600));
        QCOMPARE(answer.body.isEmpty(), status != 200);
    }

private:
    static std::shared_ptr<Program> programNamed(const QString &name)
    {
        if (name == "demo")
            return std::make_shared<DemoProgram>();
        return std::make_shared<ServerProgram>();
    }

    QHash<QString, std::shared_ptr<Program>> running;
    std::shared_ptr<Program> tested;
    ServiceClient client;
    QString session;
};

QTEST_GUILESS_MAIN(InterfaceTest)
#include "InterfaceTest.moc"
