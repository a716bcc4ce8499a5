#include "base/hosttext.h"

#include "base/hostlog.h"

#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivostyle/style.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>
#include <QtCore/QPointer>
#include <QtCore/QTranslator>

#include <algorithm>
#include <iterator>

namespace mivohost {

namespace {

QString knownReason(const QString& reason)
{
    // Not by hostText(): a reason of the system's has no text, and that is no mistake.
    return QCoreApplication::translate("MivoHost", reason.toUtf8().constData(), "Reason");
}

/// As knownReason(), also with a closer reason in brackets behind it.
QString knownWithDetail(const QString& reason)
{
    const QString whole = knownReason(reason);
    if (whole != reason || !reason.endsWith(')')) {
        return whole;
    }
    const int bracket = reason.indexOf(QLatin1String(" ("));
    const QString detail = reason.mid(bracket + 2).chopped(1);
    const bool beginsWithWhatFailed = reason.left(bracket).contains(QLatin1String(": "));
    return bracket < 0 || beginsWithWhatFailed
               ? reason
               : QStringLiteral("%1 (%2)").arg(knownReason(reason.left(bracket)),
                                               knownReason(detail));
}

} // namespace

void loadLanguages()
{
    auto& translator = SettingWdigetTranslateManager::instance().translator();
    for (const QString& file : mivo::style::languageFiles()) {
        translator.load(file);
    }
    translator.setMissingTextHandler(
        [](const QString& /*catalogue*/, const QString& /*context*/, const QString& key) {
            hostLog()->warn("no text for {}", key.toStdString());
        });
    switchTexts(systemLanguage());
}

QString systemLanguage()
{
    return QLocale::system().language() == QLocale::Chinese ? QStringLiteral("zh_cn")
                                                            : QStringLiteral("en");
}

QString languageOf(const QString& name)
{
    const QString wanted = name.toLower().replace('-', '_');
    for (const QString& file : mivo::style::languageFiles()) {
        const QString language = QFileInfo(file).completeBaseName().section('_', 1);
        if (language == wanted) {
            return language;
        }
    }
    return systemLanguage();
}

void switchTexts(const QString& language)
{
    static QPointer<QTranslator> qtTexts; // and the reasons; goes with the application
    SettingWdigetTranslateManager::instance().translator().switchLanguage(language);
    if (!qtTexts) {
        qtTexts = new QTranslator(QCoreApplication::instance());
        QCoreApplication::installTranslator(qtTexts);
    }
    const QString file = QStringLiteral(":/mivo/languages/mivo_%1.qm").arg(language);
    if (qtTexts->filePath() != file) { // else all widgets would be told of another language
        qtTexts->load(file);
    }
}

QString hostText(const QString& key)
{
    return velorn::trans::translate(SettingWdigetTranslateManager::instance().translator(),
                                    QStringLiteral("MivoHost"), QStringLiteral("MainWindow"), key);
}

QString listText(const QStringList& items)
{
    return items.join(hostText("ListSeparator"));
}

QString timeText(const QDateTime& time)
{
    return QLocale::system().toString(time.toLocalTime(), QLocale::ShortFormat);
}

QString searchText(const QString& text)
{
    const QString folded = text.normalized(QString::NormalizationForm_KD).toCaseFolded();
    QString bare;
    std::copy_if(folded.begin(), folded.end(), std::back_inserter(bare),
                 [](QChar each) { return !each.isMark(); });
    return bare;
}

QString reasonText(const QString& reason)
{
    const QLatin1String colon(": ");
    for (int start = 0; start >= 0;) {
        const QString rest = reason.mid(start);
        const QString text = knownWithDetail(rest);
        if (text != rest) {
            return reason.left(start) + text;
        }
        const int next = reason.indexOf(colon, start);
        start = next < 0 ? -1 : next + colon.size();
    }
    return reason;
}

} // namespace mivohost
