// SPDX-License-Identifier: MIT
#include "API/LayoutDocument.h"

#include "tests/support/Test.h"

#include "API/Layout.h"

using namespace ZorvaneClient::API;
using namespace ZorvaneClient::API::Internal;

namespace {

QVariantList layoutsOf(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).toVariant().toList();
}

} // namespace

class LayoutDocumentTest : public QObject
{
    Q_OBJECT

private slots:
    void plausibleLayoutsPassUnchanged()
    {
        const QVariantList given = layoutsOf(
            R"([{"id":"a","name":"A","rows":32,"columns":1,"cameras":[
               {"server":"s","camera":7,"row":31,"column":0,"w":1,"h":2},
               {"server":"s","camera":8,"row":0,"column":0}]},
            {"name":"without the rest"}, {}])");
        const QList<QVariantMap> passed = boundedLayouts(given);
        QCOMPARE(passed.size(), given.size());
        for (int i = 0; i < given.size(); ++i)
            QCOMPARE(passed.at(i), given.at(i).toMap());
    }

    void tooManyLayouts()
    {
        QVariantList many;
        for (int i = 0; i < LayoutBounds::layouts + 500; ++i)
            many.append(QVariantMap{{"id"_s, QString::number(i)}});
        QTest::ignoreMessage(QtWarningMsg, "Too many layouts: 1500 taken: 1000");
        const QList<QVariantMap> taken = boundedLayouts(many);
        QCOMPARE(taken.size(), LayoutBounds::layouts);
        QCOMPARE(taken.constLast().value("id"_s).toString(), "999"_s);
    }

    void cacheFileName()
    {
        const QString start =
            QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + "/layouts."_s;
        QCOMPARE(layoutsCacheFile("Demo@Zorvane.EXAMPLE"_s),
                 start + "924942403f0708c36c6637682cb19b21");
        QCOMPARE(layoutsCacheFile(QString::fromUtf8("Ж")),
                 start + "d82d7ca255082e2ca8720d69da507ee1");
    }
};

QTEST_GUILESS_MAIN(LayoutDocumentTest)
#include "LayoutDocumentTest.moc"
