// Time until the quick keys page shows what a Producer sent, and the longest event-loop iteration
// meanwhile, in which the window does not respond.

#include "app/shell/Configuration.h"
#include "pages/QuickKeysButton.h"
#include "pages/QuickKeysPage.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QSpinBox>

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

/// A visible page with a grid and keys.
class Page {
public:
    Page(int rows, int columns) {
        page_.resize(1280, 610);
        page_.show();
        page_.configQuickKey(rows, columns);
    }

    void add(int id) { page_.addQuickKey(id, QByteArray::number(id).constData(), "#203040"); }
    void turnTo(int number) { page_.findChild<QSpinBox*>()->setValue(number); }
    /// Handles events until the key has a visible button.
    void showKey(int id) {
        const auto isShown = [this, id] {
            const auto buttons = page_.findChildren<QuickKeysButton*>();
            return std::any_of(buttons.begin(), buttons.end(), [id](const QuickKeysButton* button) {
                return button->id() == id && button->isVisible() && button->height() > 0;
            });
        };
        do {
            QElapsedTimer iteration;
            iteration.start();
            QApplication::processEvents();
            longest = std::max(longest, iteration.nsecsElapsed());
        } while (!isShown());
    }

    qint64 longest = 0; ///< ns

private:
    Configuration configuration_ = makeConfiguration();
    QuickKeysPage page_{configuration_, nullptr};
};

void report(benchmark::State& state, const Page& page) {
    state.counters["longest_iteration_ms"] = static_cast<double>(page.longest) * 1e-6;
}

/// 5 x 8 keys: the next page and back.
void turnPage(benchmark::State& state) {
    Page page(5, 8);
    for (int id = 1; id <= 80; ++id)
        page.add(id);
    page.showKey(1);
    for (auto _ : state) {
        page.turnTo(2);
        page.showKey(41);
        page.turnTo(1);
        page.showKey(1);
    }
    report(state, page);
}
BENCHMARK(turnPage)->Unit(benchmark::kMillisecond);

/// 64 x 64 keys: the next page and back, a moment after the first was shown.
void turnLargestPage(benchmark::State& state) {
    Page page(64, 64);
    for (int id = 1; id <= 8'192; ++id)
        page.add(id);
    page.showKey(1);
    for (int i = 0; i < 200; ++i) // creates the next page
        page.showKey(1);
    for (auto _ : state) {
        page.turnTo(2);
        page.showKey(8'192);
        page.turnTo(1);
        page.showKey(4'096);
    }
    report(state, page);
}
BENCHMARK(turnLargestPage)->Unit(benchmark::kMillisecond)->Iterations(5);

/// The largest number of pages: 10,000.
void showLastOfMostPages(benchmark::State& state) {
    for (auto _ : state) {
        Page page(1, 1);
        page.add(10'000);
        page.turnTo(10'000);
        page.showKey(10'000);
        for (int i = 0; i < 30; ++i) // what is still to be created
            page.showKey(10'000);
        report(state, page);
    }
}
BENCHMARK(showLastOfMostPages)->Unit(benchmark::kMillisecond);

/// The largest page: 64 x 64 keys.
void showLargestPage(benchmark::State& state) {
    for (auto _ : state) {
        Page page(64, 64);
        for (int id = 1; id <= 4'096; ++id)
            page.add(id);
        page.showKey(4'096);
        report(state, page);
    }
}
BENCHMARK(showLargestPage)->Unit(benchmark::kMillisecond)->Iterations(2);

} // namespace
