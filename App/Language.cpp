// SPDX-License-Identifier: MIT
#include "App/Language.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTranslator>

namespace ZorvaneClient {
namespace App {

namespace {

constexpr int languageCodeLength = 2;

void loadTranslator(QTranslator *translator, const QString &pattern, const QString &code)
{
    // Empty, not null: null would let the toolkit try shorter names and a suffix of its own.
    const QString none(QLatin1String(""));
    const bool loaded = translator->load(pattern.arg(code), none, none, none);
    Q_UNUSED(loaded)
}

} // namespace

void loadLanguage(const QString &language)
{
    // The translators live until the process ends.
    static QTranslator *ownTexts = nullptr;
    static QTranslator *toolkitTexts = nullptr;
    static QString loadedCode;

    const QString code = language.left(languageCodeLength);
    if (code == loadedCode)
        return;
    qDebug() << "Loading language:" << code;
    if (!ownTexts)
        ownTexts = new QTranslator;
    if (!toolkitTexts)
        toolkitTexts = new QTranslator;
    if (code != QLatin1String("en")) {
        loadTranslator(ownTexts, QStringLiteral(":/translations/ZorvaneClient_%1"), code);
        loadTranslator(toolkitTexts, QStringLiteral(":/translations/qtbase_%1"), code);
        QCoreApplication::installTranslator(ownTexts);
        QCoreApplication::installTranslator(toolkitTexts);
    } else {
        QCoreApplication::removeTranslator(ownTexts);
        QCoreApplication::removeTranslator(toolkitTexts);
    }
    loadedCode = code;
}

} // namespace App
} // namespace ZorvaneClient
