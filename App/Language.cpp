// SPDX-License-Identifier: MIT
#include "App/Language.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTranslator>

#include <array>

namespace ZorvaneClient {
namespace App {

namespace {

constexpr int languageCodeLength = 2;

struct Catalogue {
    const char *pattern;
    QTranslator *translator;
};

void loadTranslator(QTranslator *translator, const QString &pattern, const QString &code)
{
    // Empty, not null: null would let the toolkit try shorter names and a suffix of its own.
    const QString none(QLatin1String(""));
    const bool loaded = translator->load(pattern.arg(code), none, none, none);
    Q_UNUSED(loaded)
}

} // namespace

QLocale localeFor(const QString &code, const QLocale &system)
{
    const QLocale::Language language = QLocale(code).language();
    // A system without a language of its own speaks English.
    const bool isPlain = system.language() == QLocale::C && language == QLocale::English;
    return isPlain ? system : QLocale(language, system.country());
}

void loadLanguage(const QString &language)
{
    // They live until the process ends.
    static std::array<Catalogue, 3> catalogues = {{
        {":/translations/ZorvaneClient_%1", nullptr},
        {":/translations/ZorvaneClientLater_%1", nullptr},
        {":/translations/qtbase_%1", nullptr},
    }};
    static QString loadedCode;

    const QString code = language.left(languageCodeLength);
    if (code == loadedCode)
        return;
    qDebug() << "Loading language:" << code;
    QLocale::setDefault(localeFor(code, QLocale::system()));
    for (Catalogue &catalogue : catalogues) {
        if (!catalogue.translator)
            catalogue.translator = new QTranslator;
        if (code == QLatin1String("en")) {
            QCoreApplication::removeTranslator(catalogue.translator);
        } else {
            loadTranslator(catalogue.translator, QLatin1String(catalogue.pattern), code);
            QCoreApplication::installTranslator(catalogue.translator);
        }
    }
    loadedCode = code;
}

} // namespace App
} // namespace ZorvaneClient
