// SPDX-License-Identifier: MIT
// What holds for every part of every window: names, contrast, room for the texts, sharp pictures.
// The program runs in Russian, on a screen of double density.
#include "tests/support/Test.h"

#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "App/Application.h"
#include "App/ServiceProfile.h"
#include "App/Settings.h"
#include "GUI/CameraSettingsDialog.h"
#include "GUI/ElidedLabel.h"
#include "GUI/KeyCard.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LocalServerDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/TabOrder.h"
#include "tests/GUI/Contrast.h"
#include "tests/GUI/Scenes.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/Roster.h"

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
/// Half transparent while they are disabled.
const QStringList dimmed = {"signInButton", "exportModeButton"};
QString nameOf(const QObject *object)
{
    const QString parent = object->parent() ? object->parent()->objectName() : QString();
    return "%1 %2 in %3"_s.arg(QLatin1String(object->metaObject()->className()),
                               object->objectName(), parent);
}

bool isControl(const QWidget *widget)
{
    const auto isField = [](const QWidget *one) {
        return one->inherits("QAbstractSpinBox") || one->inherits("QComboBox") ||
               one->inherits("QLineEdit");
    };
    // What the toolkit puts together out of parts is named as a whole.
    for (const QWidget *whole = widget->parentWidget(); whole; whole = whole->parentWidget()) {
        if (isField(whole) || whole->inherits("QCalendarWidget"))
            return false;
    }
    return isField(widget) || widget->inherits("QAbstractButton") ||
           (widget->inherits("QAbstractSlider") && !widget->inherits("QScrollBar"));
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
    if (widget->inherits("QGroupBox"))
        return widget->minimumSizeHint().width() <= widget->width();
    if (const auto *edit = qobject_cast<const QLineEdit *>(widget)) {
        constexpr int paddingPixels = 2 * 8;
        const QSize text = edit->fontMetrics().size(Qt::TextShowMnemonic, edit->placeholderText());
        return text.width() + paddingPixels <= edit->width();
    }
    const auto *label = qobject_cast<const QLabel *>(widget);
    if (widget->property("text").toString().isEmpty() || widget->inherits("QAbstractSpinBox") ||
        qobject_cast<const GUI::ElidedLabel *>(widget))
        return true;
    return label && label->wordWrap() ? label->heightForWidth(label->width()) <= label->height()
                                      : widget->sizeHint().width() <= widget->width();
}

QString textOf(const QWidget *widget)
{
    QString text;
    for (const char *name : {"text", "currentText", "placeholderText"})
        text += widget->property(name).toString();
    return text;
}

/// What is clearly not of the colour of the first pixel.
QImage inkOf(const QImage &picture)
{
    const QColor ground = picture.pixel(0, 0);
    QRect area;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor colour = picture.pixel(x, y);
            if (qAbs(colour.red() - ground.red()) + qAbs(colour.green() - ground.green()) +
                    qAbs(colour.blue() - ground.blue()) >
                60)
                area |= QRect(x, y, 1, 1);
        }
    }
    QImage ink = picture.copy(area);
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

/// True if one of the large forms is shown, pixel for pixel.
bool showsALargeForm(const QImage &shown)
{
    const QImage ink = inkOf(shown);
    const QStringList names = pictures();
    return std::any_of(names.begin(), names.end(), [&](const QString &name) {
        const QImage picture(":/"_s + name + ".png"_s);
        if (!name.endsWith("@2x"_s) || picture.width() < ink.width())
            return false;
        // With a column more, so that the first pixel is ground.
        QImage form(picture.width() + 1, picture.height(), QImage::Format_RGB32);
        form.fill(shown.pixel(0, 0));
        QPainter(&form).drawImage(QRect(QPoint(1, 0), picture.size()), picture);
        return inkOf(form) == ink;
    });
}

} // namespace

class SweepsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCOMPARE(qApp->devicePixelRatio(), qEnvironmentVariable("QT_SCALE_FACTOR").toDouble());
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

    void noEnglishIsLeft_data() { scenes(); }

    void noEnglishIsLeft()
    {
        QFETCH(Scene, scene);
        QMultiHash<QString, QString> english; // by the translation
        QString source;
        for (const QString &name : {"ZorvaneClient_ru.ts"_s, "ZorvaneClientLater_ru.ts"_s}) {
            QFile file(ZORVANE_SOURCE_DIR "/translations/" + name);
            QVERIFY(file.open(QIODevice::ReadOnly));
            for (QXmlStreamReader xml(&file); !xml.atEnd(); xml.readNext()) {
                if (xml.isStartElement() && xml.name() == "source"_s)
                    source = xml.readElementText();
                else if (xml.isStartElement() && xml.name() == "translation"_s)
                    english.insert(xml.readElementText(), source);
            }
        }
        english.remove(QString());
        const QStringList sources = english.values();
        bool hasRussian = false;
        scene([&](QWidget *window) {
            const QObjectList parts = window->findChildren<QObject *>() + QObjectList{window};
            for (const QObject *part : parts) {
                const QMetaObject *type = part->metaObject();
                // Past the object's name.
                for (int i = QObject::staticMetaObject.propertyCount(); i < type->propertyCount();
                     ++i) {
                    // Qt 6 would give names of values.
                    if (type->property(i).isEnumType())
                        continue;
                    const QString text = type->property(i).read(part).toString();
                    if (sources.contains(text))
                        faults.insert(nameOf(part) + ": "_s + text);
                    hasRussian = hasRussian || english.contains(text);
                }
            }
        });
        QVERIFY(hasRussian);
    }

    void controlsAreNamedAndTextsFit_data() { scenes(); }

    void controlsAreNamedAndTextsFit()
    {
        QFETCH(Scene, scene);
        QFETCH(int, controls);
        QFETCH(QStringList, parts);
        QSet<QPair<QWidget *, bool>> seen; // enabled and disabled
        scene([&](QWidget *window) {
            const QWidgetList all = window->findChildren<QWidget *>();
            for (const QWidget *part : all) {
                controls -= isControl(part) ? 1 : 0;
                if (isControl(part) && !hasName(part))
                    faults.insert(nameOf(part) + " has no name"_s);
            }
            visitPages(window, [&](QWidget *part) {
                parts.removeAll(part->objectName());
                if (!holdsItsText(part))
                    faults.insert(nameOf(part));
                const bool isHeading = part->objectName() == "controlBar"_s &&
                                       part->parentWidget()->objectName() == "ServerWidget"_s;
                const bool isClicked = isHeading || qobject_cast<QAbstractButton *>(part) ||
                                       part->inherits("TippedButton");
                if (isClicked && part->cursor().shape() != Qt::PointingHandCursor)
                    faults.insert(nameOf(part) + " has no hand"_s);
                if (textOf(part).isEmpty() || dimmed.contains(part->objectName()) ||
                    seen.contains({part, part->isEnabled()}))
                    return;
                seen.insert({part, part->isEnabled()});
                if (auto *edit = qobject_cast<QLineEdit *>(part)) {
                    const QSignalBlocker blocker(edit);
                    if (!edit->placeholderText().isEmpty() && edit->isEnabled())
                        edit->clear(); // shows what to type
                }
                // Enlarged, so that thin letters have their full colour; without the round ends.
                const int margin = part->height() > 20 ? part->height() / 3 : 0;
                const double contrast =
                    contrastIn(pictureOf(part, part->rect().adjusted(margin, 2, -margin, -2), 4));
                const bool isPale = paleTexts.contains(part->objectName());
                if (contrast < (isPale ? paleContrast : readableContrast))
                    faults.insert("%1 %2: %3"_s.arg(nameOf(part), textOf(part)).arg(contrast));
            });
        });
        QCOMPARE(parts, QStringList());
        QVERIFY2(controls <= 0, QByteArray::number(controls));
    }

    void screenReadersAreTold_data() { scenes(); }

    void screenReadersAreTold()
    {
        QFETCH(Scene, scene);
        QFETCH(int, controls);
        using A = QAccessible;
        int told = 0;
        scene([&](QWidget *window) {
            if (A::queryAccessibleInterface(window)->text(A::Name).isEmpty())
                faults.insert(nameOf(window) + " has no name"_s);
            // All that Tab goes to, and whatever else says that it can have the focus.
            visitTold(A::queryAccessibleInterface(window), [&](QAccessibleInterface *node) {
                const auto *widget = qobject_cast<QWidget *>(node->object());
                const bool isStop = widget && GUI::isTabStop(widget) && widget->isVisible() &&
                                    widget->isEnabled() && node->role() != A::SpinBox;
                if (isStop && !node->state().focusable)
                    faults.insert(nameOf(widget) + " can't have the focus"_s);
                const auto *actions = node->actionInterface();
                if (!node->state().focusable && (!actions || actions->actionNames().isEmpty()))
                    return;
                ++told;
                const QString texts = node->text(A::Name) + node->text(A::Description);
                const bool hasRole = node->role() != A::NoRole && node->role() != A::Client;
                if (node->text(A::Name).isEmpty() || texts.contains('<') || !hasRole)
                    faults.insert(
                        "%1: %2 is told as %3"_s.arg(widget ? nameOf(widget) : QString(), texts)
                            .arg(node->role(), 0, 16));
            });
        });
        QVERIFY2(told >= controls, QByteArray::number(told));
    }

    /// A place larger than the icon would enlarge the large form, a smaller one squeeze it.
    void picturesAreSharp_data()
    {
        rows<Scene>({"scene"}, {{"main window", showMainWindow}, {"sign-in", showSignIn}});
    }

    void picturesAreSharp()
    {
        QFETCH(Scene, scene);
        QSet<QWidget *> seen;
        scene([&](QWidget *window) {
            visitPages(window, [&](QWidget *part) {
                auto *button = qobject_cast<QPushButton *>(part);
                const auto *label = qobject_cast<QLabel *>(part);
                const bool isPicture =
                    label ? !label->pixmap(Qt::ReturnByValue).isNull()
                          : button && button->isEnabled() &&
                                (button->text().isEmpty() || !button->icon().isNull());
                // A card draws its picture itself.
                if (!isPicture || seen.contains(part) || part->objectName() == "previewImage"_s)
                    return;
                seen.insert(part);
                if (button)
                    button->setText(QString()); // the icon alone
                QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
                // Without the lines at the edges of a large button.
                const int margin = button ? qBound(0, (part->width() - 32) / 2, 4) : 0;
                const QImage shown = pictureOf(
                    part, part->rect().adjusted(margin, margin / 4, -margin, -margin / 2), 2);
                if (!showsALargeForm(shown))
                    faults.insert(nameOf(part));
            });
        });
        QVERIFY(!seen.isEmpty());
    }

    /// They inherit the sheets of what they belong to, which colour all that lies there.
    void tipsStandOut()
    {
        QSet<QWidget *> seen;
        int tips = 0;
        showMainWindow([&](QWidget *window) {
            visitPages(window, [&](QWidget *part) {
                if (part->toolTip().isEmpty() || seen.contains(part))
                    return;
                seen.insert(part);
                QHelpEvent ask(QEvent::ToolTip, QPoint(5, 5), part->mapToGlobal(QPoint(5, 5)));
                QCoreApplication::sendEvent(part, &ask);
                const QWidgetList tops = QApplication::topLevelWidgets();
                for (QWidget *top : tops) {
                    if (!top->inherits("QTipLabel") || !top->isVisible())
                        continue;
                    ++tips;
                    const QImage tip = top->grab().toImage();
                    if (tip.pixelColor(0, 0) != QColor(108, 118, 136))
                        faults.insert(nameOf(part) + " has another frame"_s);
                    const double contrast = contrastIn(tip);
                    if (contrast < readableContrast)
                        faults.insert("%1: %2"_s.arg(nameOf(part)).arg(contrast));
                }
                QToolTip::hideText();
            });
        });
        QVERIFY2(tips > 20, QByteArray::number(tips));
    }

    /// All that the palette puts one on the other, whatever the widget is up to.
    void paletteStandsOut()
    {
        using P = QPalette;
        const QMultiMap<P::ColorRole, P::ColorRole> grounds = {{P::WindowText, P::Window},
                                                               {P::Text, P::Base},
                                                               {P::Text, P::AlternateBase},
                                                               {P::ButtonText, P::Button},
                                                               {P::Link, P::Base},
                                                               {P::Link, P::Window},
                                                               {P::LinkVisited, P::Window},
                                                               {P::PlaceholderText, P::Base},
                                                               {P::HighlightedText, P::Highlight}};
        for (auto pair = grounds.cbegin(); pair != grounds.cend(); ++pair) {
            for (const P::ColorGroup group : {P::Active, P::Inactive, P::Disabled}) {
                const QPalette palette = QApplication::palette();
                const double contrast = contrastOf(palette.color(group, pair.key()).rgb(),
                                                   palette.color(group, pair.value()).rgb());
                if (contrast < readableContrast)
                    faults.insert("%1 %2: %3"_s.arg(pair.key()).arg(group).arg(contrast));
            }
        }
        for (const auto role : {P::WindowText, P::Text, P::ButtonText, P::Base, P::Highlight})
            QVERIFY(qApp->palette().color(P::Disabled, role) != qApp->palette().color(role));
        // The style that main() asks for, as a desktop would, moves the text of a pressed button.
        QCOMPARE(qApp->style()->pixelMetric(QStyle::PM_ButtonShiftHorizontal), 0);
    }

    void everyPictureHasItsForms()
    {
        const QStringList names = pictures();
        QVERIFY(!names.isEmpty());
        for (const QString &name : names) {
            if (name.endsWith("@2x"_s))
                continue;
            const QImage small(":/"_s + name + ".png"_s);
            const QImage large(":/"_s + name + "@2x.png"_s);
            if (small.isNull() || large.size() != small.size() * 2)
                faults.insert(name + " has no large form"_s);
        }
    }

private:
    static void scenes()
    {
        const Scene server = dialogScene([] { GUI::LocalServerDialog::addServer(nullptr); });
        const Scene camera =
            dialogScene([] { GUI::CameraSettingsDialog::editCamera(rosterCamera(serverId, 1)); });
        const QStringList mainParts = {"updateFailsLabel", "downloadButton", "hideRecordsButton",
                                       "exportingLabel"};
        const QStringList signInParts = {"usesProxyLbl", "settingsPBtn2", "doneButton"};
        const Scene keys = [](const Look &look) {
            GUI::MainWindow window;
            auto *card = new GUI::KeyCard(&window);
            card->showOver(window);
            look(card);
            // Each text has its translation.
            const QRegularExpression russian("[а-я]"_s);
            for (const auto *label : card->findChildren<QLabel *>())
                QVERIFY(label->property("isKeys").toBool() || label->text().contains(russian));
        };
        // Controls at least, and some of the deep parts.
        rows<Scene, int, QStringList>({"scene", "controls", "parts"},
                                      {{"main window", showMainWindow, 40, mainParts},
                                       {"sign-in", showSignIn, 15, signInParts},
                                       {"LAN server", server, 7, {"ipLabel"}},
                                       {"keys", keys, 0, {"title"}},
                                       {"camera", camera, 5, {"rotationBlock"}}});
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
    if (!qEnvironmentVariableIsSet("QT_SCALE_FACTOR"))
        qputenv("QT_SCALE_FACTOR", "2");
    qputenv("QT_STYLE_OVERRIDE", "windows");
    App::settings().setValue("common/language"_s, "ru"_s);
    App::Application application(argc, argv);
    application.setStyleSheet(App::Application::globalStyleSheet());
    SweepsTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "SweepsTest.moc"
