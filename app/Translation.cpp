#include "app/Translation.h"

#include <QDir>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

namespace varno {

using namespace Qt::StringLiterals;

QString translationsFolder()
{
    const QDir program(QCoreApplication::applicationDirPath());
    const QString installed = program.filePath(QStringLiteral(VARNO_INSTALLED_TRANSLATIONS));
    return QDir(installed).exists() ? installed
                                    : program.filePath(QStringLiteral(VARNO_BUILT_TRANSLATIONS));
}

void loadTranslation(const QString& folder)
{
    for (const QString& name : QLocale().uiLanguages()) {
        const QLocale language(name);
        if (language.language() == QLocale::English || language.language() == QLocale::C)
            return; // it comes before what else the user reads
        auto interface = std::make_unique<QTranslator>(QCoreApplication::instance());
        if (!interface->load(language, u"varno"_s, u"_"_s, folder))
            continue;
        auto* toolkit = new QTranslator(QCoreApplication::instance());
        if (toolkit->load(language, u"qtbase"_s, u"_"_s,
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
            QCoreApplication::installTranslator(toolkit);
        QCoreApplication::installTranslator(interface.release());
        if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
            QGuiApplication::setLayoutDirection(language.textDirection());
        return;
    }
}

} // namespace varno
