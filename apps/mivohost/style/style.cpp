#include "mivostyle/style.h"

#include "lookstyle.h"

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QRegularExpression>
#include <QtWidgets/QApplication>
#include <QtWidgets/QToolTip>

#include <functional>

// In a static library resources register themselves only when they are asked to; the macro does not
// work within a namespace.
static void useResources()
{
    Q_INIT_RESOURCE(mivolanguages);
    Q_INIT_RESOURCE(mivostyle);
}

namespace mivo::style {

namespace {

using Match = QRegularExpressionMatch;

/// The sheet with each match of `pattern` replaced.
QString replaced(const QString& sheet, const QString& pattern,
                 const std::function<QString(const Match&)>& replacement)
{
    QString result;
    int end = 0;
    for (auto all = QRegularExpression(pattern).globalMatch(sheet); all.hasNext();) {
        const Match match = all.next();
        result += sheet.mid(end, match.capturedStart() - end) + replacement(match);
        end = match.capturedEnd();
    }
    return result + sheet.mid(end);
}

QString inLook(Look look, const QString& dark)
{
    // One that is missing is the same in both.
    static const QHash<QString, QString> lightOf{
        {"1a1e23", "d9dfe5"},                       // window, navigation
        {"20252b", "e4e8ed"},                       // content
        {"272d34", "eff2f5"},                       // cards
        {"15181c", "ffffff"},                       // fields
        {"3a434d", "bcc5ce"},                       // lines
        {"323a43", "fbfcfd"},                       // buttons
        {"3b4550", "dde4ea"}, {"262c33", "cbd3db"}, // below the pointer
        {"46515d", "7d8996"}, {"6b7886", "5f6b78"}, // borders
        {"343d46", "cad2d9"},                       // of what is disabled
        {"d9e0e8", "1b2229"},                       // text
        {"a3b0bd", "4a5663"},                       // quiet text
        {"7d8894", "56616c"},                       // sections without a hit
        {"8a96a3", "6a7580"},                       // disabled text
        {"24405b", "2c5f91"},                       // the chosen section, its text is white
        {"6db1f2", "1767b3"}, {"10151a", "ffffff"}, // focus, and a text on it
        {"f0b35a", "8a4f00"},                       // warnings
        {"3d3220", "fdf1d8"}, {"7d6234", "b98a2e"}, {"f6d39b", "6b4400"}, // notices
        {"7d3434", "9b3a3a"},                                             // what clears
    };
    return look == Look::light ? lightOf.value(dark, dark) : dark;
}

QString lightened(const QString& sheet)
{
    return replaced(sheet, QStringLiteral("#([0-9a-f]{2})?([0-9a-f]{6})"), [](const Match& match) {
        return '#' + match.captured(1) + inLook(Look::light, match.captured(2));
    });
}

/// Qt turns around alignments and the places of parts of a control, but no margins.
QString mirrored(const QString& sheet)
{
    return replaced(sheet, QStringLiteral("((?:margin|padding): \\S+ )(\\S+)( \\S+ )([^\\s;]+);"),
                    [](const Match& match) {
                        return match.captured(1) + match.captured(4) + match.captured(3)
                               + match.captured(2) + ';';
                    });
}

} // namespace

std::vector<QString> languageFiles()
{
    useResources();
    return {QStringLiteral(":/mivo/languages/mivo_en.qm"),
            QStringLiteral(":/mivo/languages/mivo_zh_cn.qm")};
}

QColor colorOf(Look look, const char* dark)
{
    return QColor('#' + inLook(look, QString::fromLatin1(dark)));
}

void apply(Look look, Qt::LayoutDirection direction)
{
    apply(look, styleSheet(look, direction));
}

void apply(Look look, const QString& sheet)
{
    const QPalette palette = LookStyle::palette(look);
    QPalette ofWindows = palette;
    ofWindows.setColor(QPalette::Window, colorOf(look, "1a1e23"));
    QPalette ofAreas = palette;
    ofAreas.setColor(QPalette::Window, colorOf(look, "20252b"));
    QPalette ofTips = palette;
    ofTips.setColor(QPalette::ToolTipText, colorOf(look, "d9e0e8"));
    const auto setGrounds = [ofWindows, ofAreas] {
        for (const char* type : {"QDialog", "QMainWindow"}) {
            QApplication::setPalette(ofWindows, type);
        }
        QApplication::setPalette(ofAreas, "QScrollArea");
    };
    QApplication::setPalette(palette);
    setGrounds();
    QToolTip::setPalette(ofTips);
    auto* style = new LookStyle(look, sheet);
    // A change of the desktop's colours takes back the palettes of single types.
    QObject::connect(qGuiApp, &QGuiApplication::paletteChanged, style, setGrounds);
    QApplication::setStyle(style);
    // After the style, which brings the desktop's fonts of single types.
    QApplication::setFont(LookStyle::font());
}

QString styleSheet(Look look, Qt::LayoutDirection direction)
{
    useResources();
    QFile file(QStringLiteral(":/mivo/style/mivo.qss"));
    file.open(QIODevice::ReadOnly);
    const QString dark = QString::fromUtf8(file.readAll());
    const QString sheet = look == Look::light ? lightened(dark) : dark;
    return direction == Qt::RightToLeft ? mirrored(sheet) : sheet;
}

} // namespace mivo::style
