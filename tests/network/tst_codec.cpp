#include "network/LVNtc.h"
#include "network/events/EventTable.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/ProtocolBytes.h"

#include <QFile>
#include <QTest>

using namespace NetworkCompanion;
using namespace MeshpadTest;

namespace {

using Events = std::vector<std::shared_ptr<Event>>;

template <typename... EventClass>
Events share(const EventClass&... events) {
    return {std::make_shared<EventClass>(events)...};
}

/// The events of docs/example_payloads.txt, in the order of their codes.
Events goldenEvents() {
    using Element = LV_NTC_ElementType;
    using Deformation = LV_NTC_DeformationType;
    const DeformationModeEvent mode(Deformation::None, 1, 2, "Wall", 3, 4, true);
    const MediaDeformationModeEvent mediaMode(Element::Texture, Deformation::Bezier, 3, 4, 5, "Sea",
                                              6, 7, true);
    const ScreenPartDeformationModeEvent partMode(Deformation::Curve, 1, 3, 4, "Part", 5, 6, true);
    const MediaMovePointEvent mediaPoint(1, 2, 3, "Sea", 4, 1.5, -2.25, 90.0, true, false);
    const TextureMovePointEvent texturePoint(1, 2, 3, "Noise", 4, 0.1, -0.0, 0.0, false, true);
    const ScreenMovePointEvent screenPoint(1, 2, "Wall", 3, qQNaN(), -2.25, 5e-324, true, false);
    const ScreenPartMovePointEvent partPoint(1, 2, 3, "P", 4, 1.5, -2.25, 90.0, false, true);
    ItemDataEvent item(-1);
    item.setDeformationModeEvent(mode);
    item.setScreenPartDeformationModeEvent(partMode);
    item.setMediaDeformationModeEvent(mediaMode);
    item.addScreenMovePointEvent(screenPoint);
    item.addScreenMovePointEvent(screenPoint);
    item.addScreenPartMovePointEvent(partPoint);
    item.addTextureMovePointEvent(texturePoint);
    item.addMediaMovePointEvent(mediaPoint);
    return share(
        MsgEvent("getResources"), MireEvent(7, LV_NTC_PictureType::Horizontal),
        BlindEvent(1, 2, "a", true), MediaBlindEvent(Element::Texture, 11, 12, 13, "Clouds", true),
        ScreenPartBlindEvent(1, 2, 3, "P", false), mode, mediaMode, partMode,
        AddMediaEvent(MediaType::Video, 11, 12, 13, 1920, 1080, 6, 90.0, "Sea", true),
        AddTextureEvent(1, 2, 3, 4, 5, 6, -2.25, "Noise", true),
        AddScreenEvent(1, 2, 3, 4, 5, 0.5, "Wall", true, false),
        AddScreenPartEvent(1, 2, 3, 4, 5, 6, 1.5, "P", true), RemoveMediaEvent(1, 2, "Sea"),
        RemoveTextureEvent(3, 4, "Noise"), RemoveScreenEvent(0xfffffffe),
        RemoveScreenPartEvent(5, 6, "P"), mediaPoint, texturePoint, screenPoint, partPoint,
        ScreenModeEvent(LV_NTC_ModeType::Parts, 1, 2, "Wall"),
        AddQuickKeyEvent(1, 2, 3, "Go", "#ff0000"), UpdateQuickKeyEvent(1, 2, "Go", "#00ff00"),
        DeleteQuickKeyEvent(1, 2), ExecuteQuickKeyEvent(10'000), ConfigQuickKeyEvent(2, 3, 4),
        UpdateSettingsEvent("#000080", 3), item, GetResourcesIdEvent(0x89abcdef));
}

/// The payload with that code, which is written by hand.
QByteArray goldenPayload(int code) {
    QFile file(":/example_payloads.txt");
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString entry = QString::fromUtf8(file.readAll()).split("\n\n").value(code);
    const QByteArrayList parts = entry.section('\n', 1).toUtf8().split('\'');
    QByteArray payload;
    for (qsizetype i = 0; i < parts.size(); ++i)
        payload += i % 2 == 0 ? hex(parts[i]) : text(parts[i]);
    return payload;
}

using EventPointer = std::unique_ptr<Event>;

EventPointer decode(QByteArray frame) {
    return EventPointer(LVNtc::deserialize(frame).second);
}

LV_NTC_Header headerOf(const Event& event) {
    return {static_cast<std::uint32_t>(event.getSize()), event.type()};
}

} // namespace

class CodecTest : public GuardedTest {
    Q_OBJECT

private slots:
    void writesAndReadsGoldenBytes_data() {
        QTest::addColumn<int>("code");
        for (int code = 1; code <= int(kEventCount); ++code)
            QTest::newRow(QMetaEnum::fromType<LV_NTC_EventType>().valueToKey(code)) << code;
    }
    void writesAndReadsGoldenBytes() {
        QFETCH(int, code);
        const auto golden = goldenEvents().at(std::size_t(code) - 1);
        const QByteArray payload = goldenPayload(code);
        // The size that an item announces excludes its four counts.
        const qsizetype announced = payload.size() - (code == 28 ? 32 : 0);
        QByteArray bytes = int32(9) + int32(announced) + char(code) + payload;
        const LV_NTC_Header header = headerOf(*golden);

        QCOMPARE(golden->serialize().toHex(' '), payload.toHex(' '));
        QCOMPARE(golden->getSize(), announced);
        QCOMPARE(LVNtc::serialize(header, *golden), bytes);
        QCOMPARE(LVNtc::serializeWithLength(header, *golden), withLength(bytes));

        const eventData decoded = LVNtc::deserialize(bytes);
        const EventPointer event(decoded.second);
        QCOMPARE(decoded.first, header);
        QVERIFY(event && *event == *golden);
        QCOMPARE(event->serialize(), payload);

        QByteArray changed = payload;
        changed.back() = static_cast<char>(changed.back() ^ 1);
        golden->deserialize(changed);
        QVERIFY(!(*event == *golden));
    }

    void rejectsEveryTruncation_data() { writesAndReadsGoldenBytes_data(); }
    void rejectsEveryTruncation() {
        QFETCH(int, code);
        const auto golden = goldenEvents().at(std::size_t(code) - 1);
        const QByteArray payload = goldenPayload(code);
        const QByteArray whole = LVNtc::serialize(headerOf(*golden), *golden);
        messages_->allow(QRegularExpression("^Bad (header size|data size|point count): "));
        for (qsizetype length = 0; length < whole.size(); ++length) {
            messages_->clear();
            // A copy of its own, so that the sanitizer reports a read behind its end.
            QVERIFY(!decode(QByteArray(whole.constData(), length)));
            QCOMPARE(messages_->count(QtWarningMsg), length < 4 ? 0 : 1);
        }
        // Behind a header that announces the truncated size.
        const qsizetype smallest = code == 28 ? 851 : payload.size();
        for (qsizetype length = 0; length < smallest; ++length) {
            messages_->clear();
            QVERIFY(!decode(frame(code, payload.first(length))));
            const auto line = QString("Bad data size: %1/%2").arg(smallest).arg(length);
            QCOMPARE(messages_->seen(QtWarningMsg), QStringList(line).first(length == 0 ? 0 : 1));
        }
    }

    void writesNoDeformationByDefault() {
        const ItemDataEvent item(7);
        QCOMPARE(item.serialize().count(hex("ffffffff")), 3); // any other number would be one
    }

    void rejectsWrongLengthsAndCodes_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("line"); // empty for the event that all valid rows hold
        const auto row = [](const char* name, const QByteArray& bytes, const char* line) {
            QTest::newRow(name) << bytes << line;
        };
        row("announces less than it sends", hex("00000009 00000001 18 0000000100000002"), "");
        row("has more than the event needs", hex("00000009 0000000a 18 0000000100000002 ffff"), "");
        row("announces another header size", hex("00000003 00000008 18 0000000100000002"), "");
        row("ends within its header", hex("00000009 00"), "Bad header size: 9/5");
        row("ends within its event", hex("00000009 00000004 19 000000"), "Bad header size: 9/8");
        row("announces a huge header", hex("7fffffff 00000001 19 00"),
            "Bad header size: 2147483647/9");
        row("announces a huge size", hex("00000009 7fffffff 19 00000007"),
            "Bad header size: 9/-2147483634");
        row("announces a negative size", hex("00000009 ffffffff 19 00000007"),
            "Bad data size: 4294967295/4");
        row("announces more than it has", hex("00000008 00000009 18 0000000100000002"),
            "Bad data size: 9/8");
        row("announces less than the event", hex("00000009 00000007 18 00000001000000"),
            "Bad data size: 8/7");
        for (const int code : {0, 30, 127, -1, -128})
            QTest::addRow("code %d", code)
                << frame(code, int32(1)) << "Try to deserialize unknown event";

        const QByteArray item = ItemDataEvent().serialize().first(851), point(294, '\0');
        const auto items = [&](const char* name, const QByteArray& lists, const char* line) {
            row(name, frame(28, item + lists), line);
        };
        items("ends within a point", int64(2) + point + point.first(293), "Bad point count: 2/1");
        items("announces many points", int64(INT64_MAX) + point,
              "Bad point count: 9223372036854775807/1");
        items("announces a size that overflows", int64(1LL << 62) + point,
              "Bad point count: 4611686018427387904/1");
        items("announces a negative count", int64(-1) + point, "Bad point count: -1/1");
        items("lacks the last list", QByteArray(24, '\0') + int64(1), "Bad point count: 1/0");
    }
    void rejectsWrongLengthsAndCodes() {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, line);
        if (!line.isEmpty())
            messages_->expect(line.startsWith("Bad") ? QtWarningMsg : QtCriticalMsg, line);
        const auto [header, decoded] = LVNtc::deserialize(bytes);
        const EventPointer event(decoded);
        QVERIFY(line.isEmpty() ? event && *event == DeleteQuickKeyEvent(1, 2) : !event);
        const bool isHeader = !line.startsWith("Bad header");
        QCOMPARE(int32(header.dataSize), isHeader ? bytes.sliced(4, 4) : int32(0));
        QCOMPARE(int(header.type), isHeader ? int(bytes[8]) : 0);
    }

    void emptiesTooLongTexts() {
        messages_->expect(QtWarningMsg, "Size of message is too large");
        messages_->expect(QtWarningMsg, "Size of color is too large");
        QCOMPARE(MsgEvent(QByteArray(255, 'n')).serialize(), text(QByteArray(255, 'n')));
        QCOMPARE(MsgEvent(QByteArray(256, 'n')).serialize(), text(""));
        QCOMPARE(UpdateSettingsEvent("#1234567", 1).serialize(), text("", 8) + int32(1));
    }

    void readsUnterminatedTexts() {
        const EventPointer message = decode(frame(1, QByteArray(254, 'm') + "\xc3\xb6"));
        QCOMPARE(dynamic_cast<MsgEvent&>(*message).message(), QString(254, 'm') + QChar(0xf6));
        // The letter that the field's end cuts is left out, so that the text can be sent back.
        const EventPointer cut = decode(frame(1, QByteArray(254, 'm') + "\xe2\x82"));
        QCOMPARE(dynamic_cast<MsgEvent&>(*cut).message(), QString(254, 'm'));
        const EventPointer settings = decode(frame(27, "#1234567" + int32(0)));
        QCOMPARE(dynamic_cast<UpdateSettingsEvent&>(*settings).color(), "#1234567");
    }

    void readsMissingCountsAsZero() {
        ItemDataEvent request(7);
        QCOMPARE(request.getSize(), 851);
        for (qsizetype length = 851; length <= 883; ++length) {
            const EventPointer event = decode(frame(28, request.serialize().first(length)));
            QVERIFY(event && *event == request);
        }
        QByteArray bytes = request.serialize().replace(4, 4, hex("fffffff0"));
        request.deserialize(bytes);
        QCOMPARE(request.serialize(), bytes); // the second integer is kept, too
    }
};

QTEST_GUILESS_MAIN(CodecTest)
#include "tst_codec.moc"
