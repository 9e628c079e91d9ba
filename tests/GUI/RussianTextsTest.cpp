// SPDX-License-Identifier: MIT
// The program as it starts with the Russian language: what it shows, and that it fits.
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/LocalServer.h"
#include "App/Application.h"
#include "App/ServiceProfile.h"
#include "App/Settings.h"
#include "GUI/CameraSettingsDialog.h"
#include "GUI/ElidedLabel.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LocalServerDialog.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/RosterWidget.h"
#include "GUI/SettingsWidget.h"
#include "tests/GUI/DialogVisitor.h"
#include "tests/support/Catalogue.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/Roster.h"

using Look = std::function<void(QWidget *)>;
/// Shows a window to a look at it, and takes it away.
using Scene = std::function<void(const Look &)>;
Q_DECLARE_METATYPE(Scene)

namespace {

const QString serverId = "s1"_s;

API::LayoutPtr yardLayout()
{
    const auto layout = API::LayoutPtr::create();
    layout->setName("Двор"_s);
    layout->resize(2, 2);
    layout->setCamera(rosterCamera(serverId, 1), 0, 0, 1, 1);
    return layout;
}

/// Everything there is: both kinds of servers, cards, a tile, empty cells, an edited layout.
void showMainWindow(const Look &look)
{
    GUI::MainWindow window;
    window.show();
    window.findChild<GUI::RosterWidget *>()->updateRoster();
    window.findChild<GUI::LayoutListWidget *>()->updateLayouts();
    window.openLayout(yardLayout());
    window.showArchivePanels();
    window.startLayoutEditor();
    for (const char *part : {"restartNotice", "restartButton", "messageWidget"})
        window.findChild<QWidget *>(QLatin1String(part))->show();
    QCoreApplication::processEvents();
    look(&window);
}

void showSignIn(const Look &look)
{
    App::settings().setValue("proxy/useProxy"_s, true);
    GUI::LoginDialog dialog;
    dialog.show();
    App::settings().setValue("proxy/useProxy"_s, false);
    look(&dialog);
}

/// For a dialog that comes back only when it is closed.
Scene dialogScene(const std::function<void()> &open)
{
    return [open](const Look &look) {
        const DialogVisitor visitor(look);
        open();
        QCOMPARE(visitor.visits(), 1);
    };
}

void addScenes()
{
    QTest::addColumn<Scene>("scene");
    QTest::addColumn<QStringList>("parts"); // some of the parts that lie deep
    QTest::newRow("sign-in") << Scene(showSignIn)
                             << QStringList{"usesProxyLbl", "settingsPBtn2", "doneButton"};
    QTest::newRow("main window") << Scene(showMainWindow)
                                 << QStringList{"updateFailsLabel", "downloadButton",
                                                "hideRecordsButton", "exportingLabel"};
    QTest::newRow("LAN server") << dialogScene([] { GUI::LocalServerDialog::addServer(nullptr); })
                                << QStringList{"ipLabel"};
    QTest::newRow("camera") << dialogScene([] {
        GUI::CameraSettingsDialog::editCamera(rosterCamera(serverId, 1));
    }) << QStringList{"rotationBlock"};
}

/// A reply that comes meanwhile can bring another page up, but not for ever.
void bringToFront(QWidget *page)
{
    constexpr int attempts = 20;
    for (int n = 0; n < attempts && (n == 0 || !page->isVisible()); ++n) {
        for (QWidget *inner = page; inner->parentWidget(); inner = inner->parentWidget()) {
            if (auto *stack = qobject_cast<QStackedWidget *>(inner->parentWidget()))
                stack->setCurrentWidget(inner);
        }
        QCoreApplication::processEvents();
    }
}

/// Calls `look` with each page of each stack of the window in front, one after the other.
void visitPages(QWidget *window, const std::function<void()> &look)
{
    look();
    QList<QStackedWidget *> stacks = window->findChildren<QStackedWidget *>();
    if (auto *own = qobject_cast<QStackedWidget *>(window))
        stacks.append(own);
    for (const QStackedWidget *stack : qAsConst(stacks)) {
        for (int i = 0; i < stack->count(); ++i) {
            bringToFront(stack->widget(i));
            look();
        }
    }
}

QString nameOf(const QObject *object)
{
    return QString::fromLatin1(object->metaObject()->className()) + QLatin1Char(' ') +
           object->objectName();
}

/// Each text property of each part of a window.
template <typename Visit>
void visitTexts(const QWidget *window, Visit visit)
{
    QObjectList parts = window->findChildren<QObject *>();
    parts.append(const_cast<QWidget *>(window));
    for (const QObject *part : qAsConst(parts)) {
        const QMetaObject *type = part->metaObject();
        const int firstTold = QObject::staticMetaObject.propertyCount(); // past the object's name
        for (int i = firstTold; i < type->propertyCount(); ++i) {
            const QVariant value = type->property(i).read(part);
            if (value.userType() == QMetaType::QString && !value.toString().isEmpty())
                visit(part, type->property(i).name(), value.toString());
        }
    }
}

int textWidth(const QWidget *widget, const QString &text)
{
    return widget->fontMetrics().size(Qt::TextShowMnemonic, text).width();
}

/// True unless a part of the widget's text lies outside of it.
bool holdsItsText(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        if (qobject_cast<const GUI::ElidedLabel *>(widget) || label->text().isEmpty())
            return true;
        return label->wordWrap() ? label->heightForWidth(label->width()) <= label->height()
                                 : label->sizeHint().width() <= label->width();
    }
    if (const auto *edit = qobject_cast<const QLineEdit *>(widget)) {
        constexpr int paddingPixels = 2 * 8;
        return textWidth(edit, edit->placeholderText()) + paddingPixels <= edit->width();
    }
    if (const auto *box = qobject_cast<const QGroupBox *>(widget))
        return box->minimumSizeHint().width() <= box->width();
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    return !button || button->text().isEmpty() || button->sizeHint().width() <= button->width();
}

void collectClipped(const QWidget *window, QSet<QString> *clipped, QSet<QString> *seen)
{
    const QWidgetList widgets = window->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (!widget->isVisible() || widget->window() != window->window())
            continue;
        seen->insert(widget->objectName());
        if (!holdsItsText(widget))
            clipped->insert(nameOf(widget));
    }
}

QString joined(const QSet<QString> &texts)
{
    return QStringList(texts.values()).join("; "_s);
}

} // namespace

class RussianTextsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        App::ServiceProfile profile;
        profile.apiHost = profile.streamingHost = "127.0.0.1"_s;
        profile.apiPort = profile.streamingPort = MisbehavingServer::deadPort();
        App::ServiceProfile::setCurrent(profile);
        WorldServer cloud;
        cloud.id = serverId;
        cloud.alias = "Склад"_s;
        cloud.cameras = {{1, "Ворота"_s, false, false}};
        WorldServer bare;
        bare.id = "s2"_s;
        bare.alias = "Пусто"_s;
        bare.online = false;
        setWorld({cloud, bare});
        API::CloudAPIClient().addLayout(yardLayout());
        API::CloudAPIClient().addLocalServer(
            API::LocalServerPtr::create("Дача"_s, profile.apiHost, profile.apiPort, QString()));
    }

    void messagesAreTranslated_data()
    {
        QTest::addColumn<QByteArray>("context");
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *context, const char *source, const char *text) {
            QTest::addRow("%s of %s", source, context)
                << QByteArray(context) << QByteArray(source) << QString::fromUtf8(text);
        };
        const char *const camera = "ZorvaneClient::API::Camera";
        row(camera, " is ", " ");
        row(camera, "Camera ", "Камера ");
        row(camera, "not paid for", "не оплачена");
        row(camera, "offline", "не подключена");
        row("ZorvaneClient::API::Layout", "Untitled Layout", "Новая Раскладка");
        const char *const grid = "ZorvaneClient::GUI::LayoutWidget";
        row(grid, "Record saved.", "Экспорт завершен.");
        row(grid, "Snapshot saved.", "Кадр сохранен.");
        const char *const window = "ZorvaneClient::GUI::MainWindow";
        row(window, "Archive is not shared", "Нет доступа к архиву");
        row(window, "The layout has been modified.", "Раскладка была изменена.");
        const char *const tile = "ZorvaneClient::GUI::Player::VideoWidget";
        row(tile, "Archive is not shared", "Нет доступа к архиву");
        row(tile, "Live is not shared", "Видео недоступно");
        row(tile, "No records", "Нет записей");
        row(tile, "No video available", "Видео недоступно");
        const char *const settings = "ZorvaneClient::GUI::SettingsWidget";
        row(settings, "%1 %2 version is available. Would you like to download it now?",
            "Доступна версия %1 %2. Желаете загрузить её сейчас?");
        const char *const timeline = "ZorvaneClient::GUI::Timeline";
        row(timeline, "Archive is not shared", "Нет доступа к архиву");
        row(timeline, "No records", "Нет записей");
        row(timeline, "Cannot load records", "Не удалось загрузить записи");
        row(timeline, "Loading records...", "Загрузка записей...");
        row("QObject", "Search for layouts...", "Искать раскладки...");
        const char *const signIn = "ZorvaneClient::GUI::LoginDialog";
        row(signIn, "/?target=password-recover&lang=en", "/?target=password-recover&lang=ru");
        row(signIn, "/?target=sign_up&lang=en", "/?target=sign_up&lang=ru");
        row("VideoPlaceholder", "Drop a camera here", "Перетащите камеру в ячейку");
        row("ToolBar", "Form", "Form");
        row("SettingsWidget", "English", "English");
        row("ArchiveControlPanel", "MMM dd", "MMM dd");
        row("QObject", "Zorvane", "Zorvane");
    }

    void messagesAreTranslated()
    {
        QFETCH(QByteArray, context);
        QFETCH(QByteArray, source);
        QFETCH(QString, text);
        QCOMPARE(QCoreApplication::translate(context, source), text);
    }

    void widgetsShowTheirText_data()
    {
        QTest::addColumn<Scene>("scene");
        QTest::addColumn<QString>("object");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QString>("text");
        Scene scene = showSignIn;
        const auto row = [&scene](const char *object, const char *property, const char *text) {
            QTest::addRow("%s, %s", object, property)
                << scene << QString::fromLatin1(object) << QByteArray(property)
                << QString::fromUtf8(text);
        };
        row("remindButton", "text", "Напомнить пароль");
        row("signInButton", "text", "Войти");
        row("signUpButton", "text", "Регистрация");
        row("wrongEmailPassLbl", "text", "Неправильный email или пароль");
        scene = showMainWindow;
        row("layoutsButton", "toolTip", "Раскладки");
        row("searchEdit", "placeholderText", "Искать камеры...");
        row("serverOfflineImage", "toolTip", "Сервер не подключен");
        row("restartNotice", "text", "Перезапустите приложение для применения настроек");
        row("saveLayoutButton", "text", "Сохранить");
        row("showRecordsButton", "toolTip", "Показать записи");
        row("selectFragmentLabel", "text", "Выберите участок для экспорта");
        row("actionClone_window", "text", "Открыть новое окно");
        row("closeButton", "toolTip", "Закрыть камеру");
        scene = dialogScene([] { GUI::LocalServerDialog::addServer(nullptr); });
        row("showPassword", "text", "Показать пароль");
        scene =
            dialogScene([] { GUI::CameraSettingsDialog::editCamera(rosterCamera(serverId, 1)); });
        row("mirrorBox", "text", "Зеркальное отражение");
    }

    void widgetsShowTheirText()
    {
        QFETCH(Scene, scene);
        QFETCH(QString, object);
        QFETCH(QByteArray, property);
        QFETCH(QString, text);
        QString shown;
        scene([&](const QWidget *window) {
            if (const auto *part = window->findChild<QObject *>(object))
                shown = part->property(property).toString();
        });
        QCOMPARE(shown, text);
    }

    void noEnglishIsLeft_data() { addScenes(); }

    void noEnglishIsLeft()
    {
        QFETCH(Scene, scene);
        QSet<QString> english;
        QSet<QString> russian;
        const Catalogue catalogue = russianCatalogue();
        for (const CatalogueMessage &message : catalogue) {
            if (message.isTranslated()) {
                english.insert(message.source);
                russian.insert(message.translation);
            }
        }
        QSet<QString> left;
        int translated = 0;
        scene([&](const QWidget *window) {
            visitTexts(window, [&](const QObject *part, const char *property, const QString &text) {
                if (english.contains(text))
                    left.insert(nameOf(part) + QLatin1Char('.') + QLatin1String(property));
                if (russian.contains(text))
                    ++translated;
            });
        });
        QVERIFY2(left.isEmpty(), qPrintable(joined(left)));
        QVERIFY(translated > 0);
    }

    void textsFit_data() { addScenes(); }

    void textsFit()
    {
        QFETCH(Scene, scene);
        QFETCH(QStringList, parts);
        QSet<QString> clipped;
        QSet<QString> seen;
        scene([&](QWidget *window) {
            visitPages(window, [&] { collectClipped(window, &clipped, &seen); });
        });
        QVERIFY2(clipped.isEmpty(), qPrintable(joined(clipped)));
        for (const QString &part : qAsConst(parts))
            QVERIFY2(seen.contains(part), qPrintable(part));
    }

    void stateOfACameraIsASentence()
    {
        QCOMPARE(rosterCamera(serverId, 1)->statusText(),
                 "Камера Ворота не оплачена и не подключена"_s);
    }

    void dateKeepsItsFormat()
    {
        showMainWindow([](const QWidget *window) {
            QCOMPARE(window->findChild<QDateEdit *>("dateEdit"_s)->displayFormat(), "MMM dd"_s);
        });
    }

    void standardButtonsAreRussian()
    {
        QMessageBox box;
        box.setStandardButtons(QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
        QStringList texts;
        for (const auto which : {QMessageBox::Save, QMessageBox::Discard, QMessageBox::Cancel})
            texts.append(box.button(which)->text().remove(QLatin1Char('&')));
        QCOMPARE(texts, (QStringList{"Сохранить", "Отклонить", "Отмена"}));
    }

    void englishComesBack()
    {
        auto *application = qobject_cast<App::Application *>(qApp);
        application->translate("en"_s);
        const QMessageBox box(QMessageBox::NoIcon, QString(), QString(), QMessageBox::Cancel);
        const QString toolkitText = box.button(QMessageBox::Cancel)->text();
        const QString ownText = QCoreApplication::translate("ToolBar", "Layouts");
        application->translate("ru"_s);
        QCOMPARE(toolkitText, "Cancel"_s);
        QCOMPARE(ownText, "Layouts"_s);
    }
};

int main(int argc, char *argv[])
{
    App::settings().setValue("common/language"_s, "ru"_s);
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    RussianTextsTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "RussianTextsTest.moc"
