// A key in the search line of a dialog with 200 pages and 5,000 texts: milliseconds until its hits
// are known and until they are drawn, beside one QString::contains() for each of the same texts.

#include "opening.h"
#include "support/plainpage.h"
#include "support/uselook.h"

#include <benchmark/benchmark.h>

#include <QtGui/QFocusEvent>

namespace {

using mivo::settings::SettingsDialog;

constexpr int sectionCount = 20;
constexpr int pageCount = 200;
constexpr int rowCount = 6; // each of four texts; one more is the page's title

/// Typed one after the other: all texts, some, a few, none, and again.
const char* const typed[] = {"e", "of", "of page 7", "of page 77", "nothing of that kind"};

class Page : public PlainPage
{
public:
    explicit Page(int number) : PlainPage(QStringLiteral("Section%1").arg(number % sectionCount))
    {
        setTitle(textOf("Page", number));
        for (int row = 0; row < rowCount; ++row) {
            auto* label = new QLabel(textOf("Fade time", number));
            auto* box = new QCheckBox(textOf("Mute output", number));
            box->setToolTip(textOf("While the screen is black", number));
            auto* combo = new QComboBox;
            combo->addItem(textOf("Permanent", number));
            auto* line = new QHBoxLayout;
            for (QWidget* control : {static_cast<QWidget*>(label), static_cast<QWidget*>(box),
                                     static_cast<QWidget*>(combo)}) {
                line->addWidget(control);
            }
            static_cast<QVBoxLayout*>(layout())->addLayout(line);
        }
    }

    QStringList texts;

private:
    QString textOf(const char* what, int page)
    {
        texts.append(QStringLiteral("%1 %2 of page %3").arg(what).arg(texts.size()).arg(page));
        return texts.last();
    }
};

struct LargeDialog
{
    LargeDialog()
    {
        useHostLanguage("en");
        useLook(mivo::style::Look::dark);
        dialog.enableSearch();
        for (int i = 0; i < pageCount; ++i) {
            auto* page = new Page(i);
            for (const QString& text : page->texts) {
                prepared.append(text.toCaseFolded());
            }
            dialog.insertSettingBox(page);
        }
        line = dialog.findChild<QLineEdit*>(QStringLiteral("settingsSearch"));
        opening::drawFirstFrame(dialog);
    }

    SettingsDialog dialog;
    QLineEdit* line;
    QStringList prepared;
};

/// One for all, for it takes seconds to make; it outlives the application.
LargeDialog& largeDialog()
{
    static auto* large = new LargeDialog;
    return *large;
}

void floor(benchmark::State& state)
{
    const LargeDialog& large = largeDialog();
    int key = 0;
    for (auto _ : state) {
        const QString wanted = QString::fromLatin1(typed[key++ % 5]);
        for (const QString& text : large.prepared) {
            benchmark::DoNotOptimize(text.contains(wanted));
        }
    }
    state.counters["texts"] = large.prepared.size();
}

/// What comes before the first key: the focus, at which all texts are read.
void focus(benchmark::State& state)
{
    LargeDialog& large = largeDialog();
    for (auto _ : state) {
        large.dialog.hide(); // which forgets them
        large.dialog.show();
        QApplication::processEvents();
        QFocusEvent event(QEvent::FocusIn);
        QElapsedTimer timer;
        timer.start();
        QApplication::sendEvent(large.line, &event);
        state.SetIterationTime(1e-9 * static_cast<double>(timer.nsecsElapsed()));
    }
}

/// With `isFirst`, the key by which a search begins.
void search(benchmark::State& state, bool isFirst, bool draws)
{
    LargeDialog& large = largeDialog();
    large.line->setText(isFirst ? QString() : QStringLiteral("x"));
    int key = 0;
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        large.line->setText(QString::fromLatin1(typed[key++ % 5]));
        if (draws) {
            QApplication::processEvents();
        }
        state.SetIterationTime(1e-9 * static_cast<double>(timer.nsecsElapsed()));
        if (isFirst) {
            large.line->clear();
        }
        QApplication::processEvents();
    }
}

BENCHMARK(floor)->Name("search_5000_texts/floor")->Iterations(200);
BENCHMARK_CAPTURE(search, key, false, false)
    ->Name("search_5000_texts/key")
    ->UseManualTime()
    ->Iterations(100);
BENCHMARK_CAPTURE(search, drawn, false, true)
    ->Name("search_5000_texts/key_and_drawn")
    ->UseManualTime()
    ->Iterations(100);
BENCHMARK(focus)->Name("search_5000_texts/focus")->UseManualTime()->Iterations(20);
BENCHMARK_CAPTURE(search, first, true, false)
    ->Name("search_5000_texts/first_key")
    ->UseManualTime()
    ->Iterations(50);

} // namespace
