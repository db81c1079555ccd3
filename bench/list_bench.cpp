// Latency of the media list: arrival and removal of a show's items, selection of the next row, one
// key in the search box. The naive list for comparison rebuilds its layout with a bubble sort on
// every arrival. Run it in a network namespace because the list sends requests through the
// process's client.

#include "app/shell/Configuration.h"
#include "network/events/AddMediaEvent.h"
#include "warp/MediaItem.h"
#include "warp/MediaList.h"
#include "warp/MediaListContainer.h"

#include <QApplication>
#include <QLineEdit>
#include <QScrollArea>
#include <QVBoxLayout>

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

using namespace NetworkCompanion;

namespace {

const Configuration& configuration() {
    static const Configuration instance = makeConfiguration();
    return instance;
}

/// Medias in shuffled order: neither sorted nor reversed.
std::vector<AddMediaEvent> makeShow(int count) {
    std::vector<AddMediaEvent> show;
    for (int i = 0; i < count; ++i) {
        const QByteArray name = "Media " + QByteArray::number(i * 7919 % count);
        const auto id = static_cast<std::uint32_t>(i);
        show.emplace_back(MediaType::Image, id, id, id, 1920U, 1080U, 0U, 0.0, name.constData(),
                          false);
    }
    return show;
}

/// Runs the event loop until layout and painting are done.
void settle() {
    for (int i = 0; i < 3; ++i) {
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }
}

struct Window {
    explicit Window(int items) : list(*container.getMediaList()) {
        container.setFixedWidth(240);
        container.resize(240, 610);
        container.show();
        settle();
        for (AddMediaEvent& event : makeShow(items))
            list.receive(&event);
        settle();
    }

    MediaListContainer container{configuration(), nullptr};
    MediaList& list;
};

void itemsArriving(benchmark::State& state) {
    auto show = makeShow(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        Window window(0);
        state.ResumeTiming();
        for (AddMediaEvent& event : show)
            window.list.receive(&event);
        settle();
        state.PauseTiming();
        window.list.purgeMedia();
        state.ResumeTiming();
    }
}

void itemsLeaving(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        Window window(static_cast<int>(state.range(0)));
        state.ResumeTiming();
        window.list.purgeMedia();
        settle();
    }
}

void nextRow(benchmark::State& state) {
    Window window(static_cast<int>(state.range(0)));
    window.list.selectFirstVisibleItem();
    for (auto _ : state) {
        Item* before = window.list.selection();
        window.list.selectNextVisibleItem();
        if (window.list.selection() == before)
            window.list.selectFirstVisibleItem();
        settle();
    }
}

void searchKey(benchmark::State& state) {
    Window window(static_cast<int>(state.range(0)));
    auto* searchBox = window.container.findChild<QLineEdit*>();
    bool narrow = true;
    for (auto _ : state) {
        searchBox->setText(narrow ? "9" : "");
        narrow = !narrow;
        settle();
    }
}

void itemsArrivingNaively(benchmark::State& state) {
    auto show = makeShow(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        QScrollArea area;
        auto* content = new QWidget;
        auto* layout = new QVBoxLayout(content);
        area.setWidgetResizable(true);
        area.setWidget(content);
        area.resize(240, 610);
        area.show();
        settle();
        std::vector<Item*> rows;
        state.ResumeTiming();
        for (const AddMediaEvent& event : show) {
            rows.push_back(new MediaItem(event.mediaType(), event.cueId(), 0, 0, 0, 0, false,
                                         event.name(), configuration(), content));
            while (QLayoutItem* item = layout->takeAt(0))
                delete item;
            for (bool swapped = true; swapped;) {
                swapped = false;
                for (std::size_t i = 1; i < rows.size(); ++i) {
                    if (rows[i - 1]->labelText().toUtf8().toLower() >
                        rows[i]->labelText().toUtf8().toLower()) {
                        std::swap(rows[i - 1], rows[i]);
                        swapped = true;
                    }
                }
            }
            for (Item* row : rows) {
                layout->addWidget(row);
                row->show();
            }
        }
        settle();
    }
}

BENCHMARK(itemsArriving)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(itemsLeaving)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(nextRow)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(searchKey)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(itemsArrivingNaively)->Arg(100)->Arg(200)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
