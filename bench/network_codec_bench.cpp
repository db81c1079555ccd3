// Encoding and decoding of every event, compared with a plain field-by-field QDataStream version
// and with copying the bytes into a new array.

#include "bench/RatioReporter.h"
#include "network/LVNtc.h"
#include "network/events/EventTable.h"

#include <QDataStream>
#include <QIODevice>
#include <QMetaEnum>

#include <array>
#include <memory>
#include <tuple>

using namespace NetworkCompanion;

namespace {

using Name = std::array<char, 256>;
using Color = std::array<char, 8>;
using U = std::uint32_t;
using D = double;
using B = bool;

/// An event written without the library: two virtual functions over a stream.
struct PlainEvent {
    virtual ~PlainEvent() = default;
    virtual void write(QDataStream& stream) const = 0;
    virtual void read(QDataStream& stream) = 0;
};

template <typename... Fields>
struct Plain final : PlainEvent {
    std::tuple<Fields...> fields{};

    void write(QDataStream& stream) const override {
        std::apply([&](const auto&... field) { (put(stream, field), ...); }, fields);
    }
    void read(QDataStream& stream) override {
        std::apply([&](auto&... field) { (get(stream, field), ...); }, fields);
    }

private:
    template <typename Number>
    static void put(QDataStream& stream, Number number) {
        stream << number;
    }
    template <std::size_t Size>
    static void put(QDataStream& stream, const std::array<char, Size>& text) {
        stream.writeRawData(text.data(), int(Size));
    }
    template <typename Number>
    static void get(QDataStream& stream, Number& number) {
        stream >> number;
    }
    template <std::size_t Size>
    static void get(QDataStream& stream, std::array<char, Size>& text) {
        stream.readRawData(text.data(), int(Size));
    }
};

using PlainScreenPoint = Plain<U, U, Name, U, D, D, D, B, B>;
using PlainPoint = Plain<U, U, U, Name, U, D, D, D, B, B>;
using PlainMode = Plain<U, U, U, Name, U, U, B>;
using PlainPartMode = Plain<U, U, U, U, Name, U, U, B>;
using PlainMediaMode = Plain<U, U, U, U, U, Name, U, U, B>;

struct PlainItemData final : PlainEvent {
    U callerId = 0, second = 0;
    PlainMode mode;
    PlainPartMode partMode;
    PlainMediaMode mediaMode;
    std::vector<PlainScreenPoint> screenPoints;
    std::vector<PlainPoint> partPoints, texturePoints, mediaPoints;

    void write(QDataStream& stream) const override {
        stream << callerId << second;
        mode.write(stream);
        partMode.write(stream);
        mediaMode.write(stream);
        put(stream, screenPoints);
        put(stream, partPoints);
        put(stream, texturePoints);
        put(stream, mediaPoints);
    }
    void read(QDataStream& stream) override {
        stream >> callerId >> second;
        mode.read(stream);
        partMode.read(stream);
        mediaMode.read(stream);
        get(stream, screenPoints);
        get(stream, partPoints);
        get(stream, texturePoints);
        get(stream, mediaPoints);
    }

private:
    template <typename Point>
    static void put(QDataStream& stream, const std::vector<Point>& points) {
        stream << qint64(points.size());
        for (const Point& point : points)
            point.write(stream);
    }
    template <typename Point>
    static void get(QDataStream& stream, std::vector<Point>& points) {
        qint64 count = 0;
        stream >> count;
        for (qint64 i = 0; i < count; ++i)
            points.emplace_back().read(stream);
    }
};

using PlainEvents =
    std::tuple<Plain<Name>, Plain<U, U>, Plain<U, U, Name, B>, Plain<U, U, U, U, Name, B>,
               Plain<U, U, U, Name, B>, PlainMode, PlainMediaMode, PlainPartMode,
               Plain<U, U, U, U, U, U, U, D, Name, B>, Plain<U, U, U, U, U, D, Name, B, U>,
               Plain<U, U, U, U, D, Name, B, U, B>, Plain<U, U, U, U, U, D, Name, B, U>,
               Plain<U, U, Name>, Plain<U, U, Name>, Plain<U, Name>, Plain<U, U, Name>, PlainPoint,
               PlainPoint, PlainScreenPoint, PlainPoint, Plain<U, U, U, Name>,
               Plain<U, U, U, Name, Color>, Plain<U, U, Name, Color>, Plain<U, U>, Plain<U>,
               Plain<U, U, U>, Plain<Color, U>, PlainItemData, Plain<U>>;
static_assert(std::tuple_size_v<PlainEvents> == kEventCount);

using PlainFactory = std::unique_ptr<PlainEvent> (*)();

template <typename... Events>
constexpr auto factoriesOf(const std::tuple<Events...>*) {
    return std::array<PlainFactory, sizeof...(Events)>{
        [] { return std::unique_ptr<PlainEvent>(new Events); }...};
}
constexpr auto kPlainFactories = factoriesOf(static_cast<const PlainEvents*>(nullptr));

std::unique_ptr<PlainEvent> newPlain(int code) {
    return kPlainFactories[static_cast<std::size_t>(code - 1)]();
}

QByteArray plainFrame(const PlainEvent& event, qint32 dataSize, int code) {
    QByteArray frame;
    QDataStream stream(&frame, QIODevice::WriteOnly);
    stream << qint32(9) << dataSize << qint8(code);
    event.write(stream);
    return frame;
}

std::unique_ptr<PlainEvent> plainEvent(const QByteArray& frame) {
    QDataStream stream(frame);
    qint32 headerSize = 0, dataSize = 0;
    qint8 type = 0;
    stream >> headerSize >> dataSize >> type;
    const QByteArray payload = frame.mid(9);
    QDataStream fields(payload);
    auto event = newPlain(type);
    event->read(fields);
    return event;
}

LV_NTC_Header headerOf(const Event& event) {
    return {static_cast<std::uint32_t>(event.getSize()), event.type()};
}

void checkSame(benchmark::State& state, const QByteArray& left, const QByteArray& right) {
    if (left != right)
        state.SkipWithError("the two versions do not write the same bytes");
}

void registerEvent(const std::string& name, std::shared_ptr<Event> event) {
    const LV_NTC_Header header = headerOf(*event);
    const int code = static_cast<int>(event->type());
    const QByteArray frame = LVNtc::serialize(header, *event);
    const auto add = [&](const std::string& what, auto body) {
        benchmark::RegisterBenchmark((name + what).c_str(),
                                     [=](benchmark::State& state) {
                                         // Not shared, like bytes just read from a socket.
                                         QByteArray bytes(frame.constData(), frame.size());
                                         body(state, bytes);
                                     });
    };
    add(
        " encode/ours",
        [=](benchmark::State& state, QByteArray&) {
            for (auto _ : state)
                benchmark::DoNotOptimize(LVNtc::serialize(header, *event));
        });
    add(" encode/copy", [](benchmark::State& state, QByteArray& bytes) {
        for (auto _ : state)
            benchmark::DoNotOptimize(QByteArray(bytes.constData(), bytes.size()));
    });
    add(
        " encode/QDataStream",
        [=](benchmark::State& state, QByteArray& bytes) {
            const auto plain = plainEvent(bytes);
            checkSame(state, plainFrame(*plain, qint32(header.dataSize), code), bytes);
            for (auto _ : state)
                benchmark::DoNotOptimize(plainFrame(*plain, qint32(header.dataSize), code));
        });
    add(
        " decode/ours",
        [](benchmark::State& state, QByteArray& bytes) {
            for (auto _ : state)
                delete LVNtc::deserialize(bytes).second;
        });
    add(
        " decode/copy",
        [](benchmark::State& state, QByteArray& bytes) {
            for (auto _ : state)
                benchmark::DoNotOptimize(QByteArray(bytes.constData(), bytes.size()));
        });
    add(" decode/QDataStream", [](benchmark::State& state, QByteArray& bytes) {
        for (auto _ : state)
            benchmark::DoNotOptimize(plainEvent(bytes));
    });
}

} // namespace

int main(int argc, char** argv) {
    for (int code = 1; code <= int(kEventCount); ++code) {
        const QMetaEnum codes = QMetaEnum::fromType<LV_NTC_EventType>();
        registerEvent(codes.valueToKey(code),
                      std::shared_ptr<Event>(LVNtc::getEvent(static_cast<unsigned char>(code))));
    }
    auto item = std::make_shared<ItemDataEvent>(1);
    for (unsigned int i = 0; i < 4232; ++i)
        item->addMediaMovePointEvent({1, 2, 3, "Sea", i % 2116, i * 0.5, i * 0.25, 0, i < 2116, 0});
    registerEvent("ItemData of 4,232 points", item);

    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
