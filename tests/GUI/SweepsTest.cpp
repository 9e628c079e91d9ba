// SPDX-License-Identifier: MIT
// What holds for every part of every window: names, contrast, room for the texts, sharp pictures.
// The program runs in Russian, on a screen of double density.
#include "tests/support/Test.h"

#include <cmath>

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
#include "GUI/LayoutWidget.h"
#include "GUI/LocalServerDialog.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/PlayerNotification.h"
#include "GUI/RosterWidget.h"
#include "tests/GUI/DialogVisitor.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/Roster.h"

using Look = std::function<void(QWidget *)>;
/// Shows a window to a look at it, and takes it away.
using Scene = std::function<void(const Look &)>;
Q_DECLARE_METATYPE(Scene)

namespace {

constexpr double readableContrast = 4.5;
/// White on blue, grey on light grey.
constexpr double paleContrast = 2.3;
const QStringList paleTexts =
    "accountLabel accountSettingsHeader addServerButton cameraName checkForUpdatesLabel "
    "defaultChoice downloadButton forgetBox languageLabel latestVersionLabel newVersionLabel "
    "proxyChoice proxyHostLbl proxyLoginLbl proxyPasswordLbl proxyPortLbl remindButton "
    "restartButton restartNotice settingsLabel signUpButton signoutButton updateFailsLabel "
    "updatesLabel versionLabel"_s.split(QLatin1Char(' '));
const QString serverId = "s1"_s;

API::LayoutPtr yardLayout()
{
    const auto layout = API::LayoutPtr::create();
    layout->setName("Двор"_s);
    layout->resize(2, 2);
    layout->setCamera(rosterCamera(serverId, 1), 0, 0, 1, 1);
    return layout;
}

/// Everything there is: both kinds of servers, cards, tiles, empty cells, an edited layout.
void showMainWindow(const Look &look)
{
    GUI::MainWindow window;
    window.show();
    window.findChild<GUI::RosterWidget *>()->updateRoster();
    window.findChild<GUI::LayoutListWidget *>()->updateLayouts();
    window.openLayout(yardLayout());
    window.addToLayout(rosterCamera(serverId, 2));
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

void showHint(const Look &look)
{
    GUI::PlayerNotification hint("Кадр сохранен."_s, true, nullptr);
    hint.show();
    look(&hint);
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

/// Calls `look` with each visible part of the window, for each page of each stack in front.
void visitPages(QWidget *window, const Look &look)
{
    const auto visitVisible = [&] {
        const QWidgetList parts = window->findChildren<QWidget *>();
        for (QWidget *part : parts) {
            if (part->isVisible() && part->window() == window->window())
                look(part);
        }
    };
    visitVisible();
    QList<QStackedWidget *> stacks = window->findChildren<QStackedWidget *>();
    if (auto *own = qobject_cast<QStackedWidget *>(window))
        stacks.append(own);
    for (const QStackedWidget *stack : qAsConst(stacks)) {
        for (int i = 0; i < stack->count(); ++i) {
            bringToFront(stack->widget(i));
            visitVisible();
        }
    }
}

QString nameOf(const QObject *object)
{
    const QString parent = object->parent() ? object->parent()->objectName() : QString();
    return "%1 %2 in %3"_s.arg(QLatin1String(object->metaObject()->className()),
                               object->objectName(), parent);
}

bool isControl(const QWidget *widget)
{
    // What the toolkit puts together out of parts is named as a whole.
    for (const QWidget *whole = widget->parentWidget(); whole; whole = whole->parentWidget()) {
        if (qobject_cast<const QAbstractSpinBox *>(whole) ||
            qobject_cast<const QComboBox *>(whole) || qobject_cast<const QLineEdit *>(whole) ||
            qobject_cast<const QCalendarWidget *>(whole))
            return false;
    }
    return qobject_cast<const QAbstractButton *>(widget) ||
           (qobject_cast<const QAbstractSlider *>(widget) &&
            !qobject_cast<const QScrollBar *>(widget)) ||
           qobject_cast<const QAbstractSpinBox *>(widget) ||
           qobject_cast<const QComboBox *>(widget) || qobject_cast<const QLineEdit *>(widget);
}

/// Of a control that somebody can't see, or that shows nothing but a picture.
bool hasName(const QWidget *widget)
{
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    if (button && !button->text().isEmpty())
        return true;
    if (button && button->toolTip().isEmpty())
        return false;
    const QList<QLabel *> labels = widget->window()->findChildren<QLabel *>();
    return !widget->accessibleName().isEmpty() ||
           std::any_of(labels.begin(), labels.end(), [widget](const QLabel *label) {
               return label->buddy() == widget && !label->text().isEmpty();
           });
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
        const QSize text = edit->fontMetrics().size(Qt::TextShowMnemonic, edit->placeholderText());
        return text.width() + paddingPixels <= edit->width();
    }
    if (const auto *box = qobject_cast<const QGroupBox *>(widget))
        return box->minimumSizeHint().width() <= box->width();
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    return !button || button->text().isEmpty() || button->sizeHint().width() <= button->width();
}

double luminance(QRgb colour)
{
    const auto linear = [](int channel) {
        const double share = channel / 255.0;
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) +
           0.0722 * linear(qBlue(colour));
}

/// Of the colour that stands out most from the most frequent one, by the formula for web pages.
double contrastIn(const QImage &picture)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++counts[picture.pixel(x, y)];
    }
    const QList<QRgb> colours = counts.keys();
    const QRgb ground =
        *std::max_element(colours.begin(), colours.end(), [&counts](QRgb one, QRgb other) {
            return counts.value(one) < counts.value(other);
        });
    double strongest = 1;
    for (const QRgb colour : colours) {
        const auto [dark, light] = std::minmax({luminance(ground), luminance(colour)});
        strongest = qMax(strongest, (light + 0.05) / (dark + 0.05));
    }
    return strongest;
}

/// What the window shows in `area` of the widget, `scale` times enlarged.
QImage pictureOf(QWidget *widget, const QRect &area, qreal scale)
{
    QImage picture(area.size() * scale, QImage::Format_RGB32);
    picture.fill(Qt::white);
    picture.setDevicePixelRatio(scale);
    widget->window()->render(&picture, QPoint(),
                             QRect(widget->mapTo(widget->window(), area.topLeft()), area.size()));
    return picture;
}

/// Enlarged, so that thin letters have pixels of their full colour; without the round ends.
double textContrast(QWidget *widget)
{
    const int margin = widget->height() > 20 ? widget->height() / 3 : 0;
    return contrastIn(pictureOf(widget, widget->rect().adjusted(margin, 2, -margin, -2), 4));
}

QString textOf(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (const auto *edit = qobject_cast<const QLineEdit *>(widget))
        return edit->text() + edit->placeholderText();
    if (const auto *box = qobject_cast<const QComboBox *>(widget))
        return box->currentText();
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    return button ? button->text() : QString();
}

/// What is clearly not of the colour of the first pixel.
QImage inkOf(const QImage &picture)
{
    const QRgb ground = picture.pixel(0, 0);
    QRect area;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb colour = picture.pixel(x, y);
            if (qAbs(qRed(colour) - qRed(ground)) + qAbs(qGreen(colour) - qGreen(ground)) +
                    qAbs(qBlue(colour) - qBlue(ground)) >
                60)
                area |= QRect(x, y, 1, 1);
        }
    }
    QImage ink = picture.copy(area).convertToFormat(QImage::Format_RGB32);
    ink.setDevicePixelRatio(1);
    return ink;
}

/// Without ":/" and ".png".
QStringList pictures()
{
    QStringList found;
    QDirIterator files(":/"_s, {"*.png"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!path.startsWith(":/qt-project.org"_s))
            found.append(path.mid(2).chopped(4));
    }
    return found;
}

/// With a column more, so that the first pixel is ground.
QImage onGround(QImage picture, QRgb ground)
{
    picture.setDevicePixelRatio(1);
    QImage whole(picture.size() + QSize(1, 0), QImage::Format_RGB32);
    whole.fill(ground);
    QPainter(&whole).drawImage(1, 0, picture);
    return whole;
}

/// True if one of the large forms is shown, pixel for pixel.
bool showsALargeForm(const QImage &shown)
{
    const QImage ink = inkOf(shown);
    const QStringList names = pictures();
    return std::any_of(names.begin(), names.end(), [&](const QString &name) {
        const QImage picture(":/"_s + name + ".png"_s);
        return name.endsWith("@2x"_s) && picture.width() >= ink.width() &&
               inkOf(onGround(picture, shown.pixel(0, 0))) == ink;
    });
}

} // namespace

class SweepsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCOMPARE(qApp->devicePixelRatio(), 2.0);
        App::ServiceProfile profile;
        profile.apiHost = profile.streamingHost = "127.0.0.1"_s;
        profile.apiPort = profile.streamingPort = MisbehavingServer::deadPort();
        App::ServiceProfile::setCurrent(profile);
        WorldServer cloud{serverId, "Склад"_s, {{1, "Ворота"_s, false, false}, {2, "Двор"_s}}};
        cloud.cameras[1].online = false;
        setWorld({cloud, {"s2"_s, "Пусто"_s, {}, false}});
        API::CloudAPIClient().addLayout(yardLayout());
        API::CloudAPIClient().addLocalServer(
            API::LocalServerPtr::create("Дача"_s, profile.apiHost, profile.apiPort, QString()));
    }

    void everyControlHasAName_data() { scenes(); }

    void everyControlHasAName()
    {
        QFETCH(Scene, scene);
        QFETCH(int, controls);
        scene([this, &controls](QWidget *window) {
            const QWidgetList parts = window->findChildren<QWidget *>();
            for (const QWidget *part : parts) {
                controls -= isControl(part) ? 1 : 0;
                if (isControl(part) && !hasName(part))
                    faults.insert(nameOf(part));
            }
        });
        QVERIFY2(controls <= 0, QByteArray::number(controls));
    }

    void noEnglishIsLeft_data() { scenes(); }

    void noEnglishIsLeft()
    {
        QFETCH(Scene, scene);
        QSet<QString> english;
        QSet<QString> russian;
        QFile file(QStringLiteral(ZORVANE_SOURCE_DIR "/translations/ZorvaneClient_ru.ts"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QString source;
        for (QXmlStreamReader xml(&file); !xml.atEnd(); xml.readNext()) {
            if (xml.isStartElement() && xml.name() == "source"_s) {
                source = xml.readElementText();
            } else if (xml.isStartElement() && xml.name() == "translation"_s) {
                const QString translation = xml.readElementText();
                if (!translation.isEmpty()) {
                    english.insert(source);
                    russian.insert(translation);
                }
            }
        }
        int translated = 0;
        scene([&](const QWidget *window) {
            QObjectList parts = window->findChildren<QObject *>();
            parts.append(const_cast<QWidget *>(window));
            for (const QObject *part : qAsConst(parts)) {
                const QMetaObject *type = part->metaObject();
                // Past the object's name.
                for (int i = QObject::staticMetaObject.propertyCount(); i < type->propertyCount();
                     ++i) {
                    const QVariant value = type->property(i).read(part);
                    if (value.userType() != QMetaType::QString || value.toString().isEmpty())
                        continue;
                    if (english.contains(value.toString()))
                        faults.insert(nameOf(part) + ": "_s + value.toString());
                    translated += russian.contains(value.toString()) ? 1 : 0;
                }
            }
        });
        QVERIFY(translated > 0);
    }

    void textsFit_data() { scenes(); }

    void textsFit()
    {
        QFETCH(Scene, scene);
        QFETCH(QStringList, parts);
        scene([this, &parts](QWidget *window) {
            visitPages(window, [this, &parts](QWidget *part) {
                parts.removeAll(part->objectName());
                if (!holdsItsText(part))
                    faults.insert(nameOf(part));
            });
        });
        QCOMPARE(parts, QStringList());
    }

    void textsStandOut_data() { scenes(); }

    void textsStandOut()
    {
        QFETCH(Scene, scene);
        QFETCH(QStringList, parts);
        QSet<QWidget *> seen;
        scene([&](QWidget *window) {
            visitPages(window, [&](QWidget *part) {
                if (textOf(part).isEmpty() || !part->isEnabled() || seen.contains(part))
                    return;
                seen.insert(part);
                if (auto *edit = qobject_cast<QLineEdit *>(part)) {
                    const QSignalBlocker blocker(edit);
                    if (!edit->placeholderText().isEmpty())
                        edit->clear(); // shows what to type
                }
                const double contrast = textContrast(part);
                const bool isPale = paleTexts.contains(part->objectName());
                if (contrast < (isPale ? paleContrast : readableContrast))
                    faults.insert("%1 %2: %3"_s.arg(nameOf(part), textOf(part)).arg(contrast));
            });
        });
    }

    /// A place larger than the icon would enlarge the large form, a smaller one squeeze it, and so
    /// would the pressed look.
    void picturesAreSharp_data()
    {
        rows<Scene>({"scene"}, {{"main window", Scene(showMainWindow)},
                                {"sign-in", Scene(showSignIn)},
                                {"hint", Scene(showHint)}});
    }

    void picturesAreSharp()
    {
        QFETCH(Scene, scene);
        QSet<QWidget *> seen;
        scene([&](QWidget *window) {
            visitPages(window, [&](QWidget *part) {
                const auto *label = qobject_cast<QLabel *>(part);
                auto *button = qobject_cast<QPushButton *>(part);
                QImage shown;
                // A card draws its picture itself.
                if (seen.contains(part) || part->objectName() == "previewImage"_s) {
                    return;
                } else if (label && !label->pixmap(Qt::ReturnByValue).isNull()) {
                    shown = onGround(label->pixmap(Qt::ReturnByValue).toImage(),
                                     QColor(Qt::magenta).rgb());
                } else if (button && button->isEnabled() &&
                           (button->text().isEmpty() || !button->icon().isNull())) {
                    button->setText(QString()); // the icon alone
                    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
                    shown = iconOf(button);
                } else {
                    return;
                }
                seen.insert(part);
                if (!showsALargeForm(shown))
                    faults.insert(nameOf(part));
                if (!button || button->isCheckable())
                    return;
                const QSize size = inkOf(shown).size();
                button->setDown(true);
                const QImage pressed = iconOf(button);
                if (pressed == shown || inkOf(pressed).size() != size)
                    faults.insert(nameOf(part) + " pressed"_s);
                button->setDown(false);
            });
        });
        QVERIFY(!seen.isEmpty());
    }

    /// The pictures of the panels are left out on purpose: keys stay with what is typed.
    void tabGoesThroughTheEditorOfALayout()
    {
        showMainWindow([](QWidget *window) {
            QStringList order;
            const QWidget *first = window->findChild<QLineEdit *>("searchEdit"_s);
            const QWidget *widget = first;
            do {
                if (isControl(widget) && widget->isVisible() &&
                    (widget->focusPolicy() & Qt::TabFocus))
                    order.append(widget->objectName());
                widget = widget->nextInFocusChain();
            } while (widget != first);
            QCOMPARE(order, (QStringList{"searchEdit", "layoutNameEdit", "saveLayoutButton",
                                         "cancelLayoutButton"}));
        });
    }

    /// They inherit the sheet of their button, which colours all that lies in the bar.
    void popupsStandOut()
    {
        showMainWindow([](QWidget *window) {
            auto *button = window->findChild<QWidget *>("pauseButton"_s);
            QHelpEvent ask(QEvent::ToolTip, QPoint(5, 5), button->mapToGlobal(QPoint(5, 5)));
            QCoreApplication::sendEvent(button, &ask);
            const QWidgetList tops = QApplication::topLevelWidgets();
            const auto tip = std::find_if(tops.begin(), tops.end(), [](const QWidget *top) {
                return top->inherits("QTipLabel") && top->isVisible();
            });
            QVERIFY(tip != tops.end());
            const QImage shown = (*tip)->grab().toImage();
            QVERIFY(contrastIn(shown) >= readableContrast);
            QVERIFY(shown.pixelColor(3, shown.height() / 2).lightness() > 128);

            auto *box = window->findChild<QComboBox *>("languageBox"_s);
            bringToFront(box->parentWidget());
            box->showPopup();
            QAbstractItemView *list = box->view();
            const QRect row = list->visualRect(list->currentIndex()).adjusted(2, 2, -2, -2);
            QVERIFY(contrastIn(list->viewport()->grab(row).toImage()) >= readableContrast);
            box->hidePopup();
        });
    }

    void gridShowsThatItTakesADrop()
    {
        GUI::LayoutWidget grid;
        grid.resize(300, 200);
        const QImage before = grid.grab().toImage();
        QMimeData mime;
        mime.setData("layout"_s, "name");
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&grid, &enter);
        QVERIFY(grid.grab().toImage().pixel(300, 0) != before.pixel(300, 0));
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(&grid, &leave);
        QCOMPARE(grid.grab().toImage(), before);
    }

    void everyPictureHasItsForms()
    {
        const QStringList names = pictures();
        for (const QString &name : names) {
            if (name.endsWith("@2x"_s))
                continue;
            const QImage small(":/"_s + name + ".png"_s);
            const QImage large(":/"_s + name + "@2x.png"_s);
            const QImage hover(":/"_s + name + "_hover@2x.png"_s);
            if (small.isNull() || large.size() != small.size() * 2)
                faults.insert(name + " has no large form"_s);
            if (!hover.isNull() && (hover.size() != large.size() || hover == large))
                faults.insert(name + " looks the same below the mouse"_s);
        }
    }

    /// A picture that no source names is one that some button lacks.
    void sourcesNameThePictures()
    {
        static const QRegularExpression mention("(:hover[^{};]*\\{[^}]*)?"
                                                ":/{0,2}((?:[\\w-]+/)+[\\w-]+)\\.png"_s);
        const QStringList names = pictures();
        QSet<QString> unnamed(names.begin(), names.end());
        for (const char *folder : {"forms", "resources", "GUI", "App"}) {
            QDirIterator files(QStringLiteral(ZORVANE_SOURCE_DIR "/") + QLatin1String(folder),
                               {"*.ui"_s, "*.qss"_s, "*.cpp"_s}, QDir::Files,
                               QDirIterator::Subdirectories);
            while (files.hasNext()) {
                QFile file(files.next());
                QVERIFY(file.open(QIODevice::ReadOnly));
                auto matches = mention.globalMatch(QString::fromUtf8(file.readAll()));
                while (matches.hasNext()) {
                    const QRegularExpressionMatch match = matches.next();
                    const QString name = match.captured(2);
                    const bool isHoverRule = !match.captured(1).isEmpty();
                    if (!names.contains(name) || (isHoverRule && !name.endsWith("_hover"_s)))
                        faults.insert(file.fileName() + ": "_s + name);
                    unnamed -= {name, name + "@2x"_s};
                }
            }
        }
        QCOMPARE(unnamed, QSet<QString>());
    }

    void stateOfACameraIsASentence()
    {
        QCOMPARE(rosterCamera(serverId, 1)->statusText(),
                 "Камера Ворота не оплачена и не подключена"_s);
    }

    void englishComesBack()
    {
        const auto texts = [] {
            const QMessageBox box(QMessageBox::NoIcon, QString(), QString(), QMessageBox::Discard);
            return QStringList{box.button(QMessageBox::Discard)->text().remove(QLatin1Char('&')),
                               QCoreApplication::translate("ToolBar", "Layouts")};
        };
        auto *application = qobject_cast<App::Application *>(qApp);
        QCOMPARE(texts(), (QStringList{"Отклонить", "Раскладки"}));
        application->translate("en"_s);
        const QStringList english = texts();
        application->translate("ru"_s);
        QCOMPARE(english, (QStringList{"Discard", "Layouts"}));
    }

private:
    /// Without the lines at the edges of a large button.
    static QImage iconOf(QWidget *button)
    {
        const int margin = qBound(0, (button->width() - 32) / 2, 4);
        return pictureOf(button, button->rect().adjusted(margin, margin / 4, -margin, -margin / 2),
                         2);
    }

    static void scenes()
    {
        rows<Scene, int, QStringList>(
            {"scene", "controls", "parts"}, // controls at least, and some of the deep parts
            {{"main window", Scene(showMainWindow), 40,
              QStringList{"updateFailsLabel", "downloadButton", "hideRecordsButton",
                          "exportingLabel"}},
             {"sign-in", Scene(showSignIn), 15,
              QStringList{"usesProxyLbl", "settingsPBtn2", "doneButton"}},
             {"LAN server", dialogScene([] { GUI::LocalServerDialog::addServer(nullptr); }), 7,
              QStringList{"ipLabel"}},
             {"camera",
              dialogScene([] { GUI::CameraSettingsDialog::editCamera(rosterCamera(serverId, 1)); }),
              5, QStringList{"rotationBlock"}}});
    }

private slots:
    void cleanup()
    {
        for (const QString &fault : qAsConst(faults))
            qWarning("%s", qPrintable(fault));
        QVERIFY(std::exchange(faults, {}).isEmpty());
    }

private:
    QSet<QString> faults;
};

int main(int argc, char *argv[])
{
    qputenv("QT_SCALE_FACTOR", "2");
    App::settings().setValue("common/language"_s, "ru"_s);
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    SweepsTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "SweepsTest.moc"
