#include "network/LVNtc.h"
#include "network/events/EventTable.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/ProtocolBytes.h"

#include <QRandomGenerator>
#include <QTest>

#include <set>

using namespace NetworkCompanion;
using namespace MeshpadTest;

namespace {

/// An event and the payload that it is on the wire, written down by hand.
struct GoldenEvent {
    int code;
    std::shared_ptr<Event> event;
    QByteArray payload;
};

template <typename EventClass>
GoldenEvent golden(int code, const QByteArray& payload, const EventClass& event) {
    return {code, std::make_shared<EventClass>(event), payload};
}

/// A payload with a name between other fields.
QByteArray named(const char* before, const char* name, const char* behind = "") {
    return hex(before) + text(name) + hex(behind);
}

GoldenEvent goldenItemData() {
    const QByteArray screenMode =
        named("00000001 00000005 00000006", "Left", "00000004 00000007 01");
    const QByteArray partMode =
        named("00000002 00000005 00000008 00000009", "Part", "00000003 00000002 00");
    const QByteArray mediaMode =
        named("00000001 00000000 0000000a 0000000b 0000000c", "Sea", "00000002 00000002 01");
    const QByteArray screenPoint =
        named("00000005 00000006", "Left",
              "00000001 3ff8000000000000 c002000000000000 0000000000000000 01 00");
    const QByteArray partPoint =
        named("00000005 00000008 00000009", "Part",
              "00000002 3fe0000000000000 0000000000000000 8000000000000000 00 01");
    const QByteArray texturePoint =
        named("00000014 00000015 00000016", "Noise",
              "00000003 0000000000000000 3ff0000000000000 0000000000000000 00 00");
    const QByteArray mediaPoint =
        named("0000000a 0000000b 0000000c", "Sea",
              "00000004 4056800000000000 bff0000000000000 0000000000000000 01 01");

    auto event = std::make_shared<ItemDataEvent>(-1);
    event->setDeformationModeEvent({LV_NTC_DeformationType::Bezier, 5, 6, "Left", 4, 7, true});
    event->setScreenPartDeformationModeEvent(
        {LV_NTC_DeformationType::Curve, 5, 8, 9, "Part", 3, 2, false});
    event->setMediaDeformationModeEvent({LV_NTC_ElementType::Media,
                                         LV_NTC_DeformationType::Keystone, 10, 11, 12, "Sea", 2, 2,
                                         true});
    event->addScreenMovePointEvent({5, 6, "Left", 1, 1.5, -2.25, 0.0, true, false});
    event->addScreenMovePointEvent({5, 6, "Left", 1, 1.5, -2.25, 0.0, true, false});
    event->addScreenPartMovePointEvent({5, 8, 9, "Part", 2, 0.5, 0.0, -0.0, false, true});
    event->addTextureMovePointEvent({20, 21, 22, "Noise", 3, 0.0, 1.0, 0.0, false, false});
    event->addMediaMovePointEvent({10, 11, 12, "Sea", 4, 90.0, -1.0, 0.0, true, true});
    return {28, event,
            hex("ffffffff 00000000") + screenMode + partMode + mediaMode + hex("0000000000000002") +
                screenPoint + screenPoint + hex("0000000000000001") + partPoint +
                hex("0000000000000001") + texturePoint + hex("0000000000000001") + mediaPoint};
}

/// At least one of each kind; every field has a value of its own.
std::vector<GoldenEvent> goldenEvents() {
    return {
        golden(1, text("getResources"), MsgEvent("getResources")),
        golden(2, hex("00000002 00000007"), MireEvent(7, LV_NTC_PictureType::Horizontal)),
        golden(3, named("00000002 00000001", "a", "01"), BlindEvent(1, 2, "a", true)),
        golden(4, named("00000002 0000000b 0000000c 0000000d", "Clouds", "01"),
               MediaBlindEvent(LV_NTC_ElementType::Texture, 11, 12, 13, "Clouds", true)),
        golden(5, named("00000001 00000002 00000003", "P", "00"),
               ScreenPartBlindEvent(1, 2, 3, "P", false)),
        golden(6, named("ffffffff 00000001 00000002", "Wall", "00000003 00000004 01"),
               DeformationModeEvent(LV_NTC_DeformationType::None, 1, 2, "Wall", 3, 4, true)),
        golden(
            7, named("00000002 00000001 00000003 00000004 00000005", "Sea", "00000006 00000007 01"),
            MediaDeformationModeEvent(LV_NTC_ElementType::Texture, LV_NTC_DeformationType::Bezier,
                                      3, 4, 5, "Sea", 6, 7, true)),
        golden(8, named("00000002 00000001 00000003 00000004", "Part", "00000005 00000006 01"),
               ScreenPartDeformationModeEvent(LV_NTC_DeformationType::Curve, 1, 3, 4, "Part", 5, 6,
                                              true)),
        golden(
            9,
            named("00000002 0000000b 0000000c 0000000d 00000780 00000438 00000006 4056800000000000",
                  "Sea", "01"),
            AddMediaEvent(MediaType::Video, 11, 12, 13, 1920, 1080, 6, 90.0, "Sea", true)),
        golden(10,
               named("00000001 00000002 00000004 00000005 00000006 c002000000000000", "Noise",
                     "01 00000003"),
               AddTextureEvent(1, 2, 3, 4, 5, 6, -2.25, "Noise", true)),
        golden(
            11,
            named("00000001 00000003 00000004 00000005 3fe0000000000000", "Wall", "01 00000002 00"),
            AddScreenEvent(1, 2, 3, 4, 5, 0.5, "Wall", true, false)),
        golden(12,
               named("00000001 00000002 00000004 00000005 00000006 3ff8000000000000", "P",
                     "01 00000003"),
               AddScreenPartEvent(1, 2, 3, 4, 5, 6, 1.5, "P", true)),
        golden(13, named("00000001 00000002", "Sea"), RemoveMediaEvent(1, 2, "Sea")),
        golden(14, named("00000003 00000004", "Noise"), RemoveTextureEvent(3, 4, "Noise")),
        golden(15, named("fffffffe", ""), RemoveScreenEvent(0xfffffffe)),
        golden(16, named("00000005 00000006", "P"), RemoveScreenPartEvent(5, 6, "P")),
        golden(17,
               named("00000001 00000002 00000003", "Sea",
                     "00000004 3ff8000000000000 c002000000000000 4056800000000000 01 00"),
               MediaMovePointEvent(1, 2, 3, "Sea", 4, 1.5, -2.25, 90.0, true, false)),
        golden(18,
               named("00000001 00000002 00000003", "Noise",
                     "00000004 3fb999999999999a 8000000000000000 0000000000000000 00 01"),
               TextureMovePointEvent(1, 2, 3, "Noise", 4, 0.1, -0.0, 0.0, false, true)),
        golden(19,
               named("00000001 00000002", "Wall",
                     "00000003 3ff8000000000000 c002000000000000 4056800000000000 01 00"),
               ScreenMovePointEvent(1, 2, "Wall", 3, 1.5, -2.25, 90.0, true, false)),
        golden(20,
               named("00000001 00000002 00000003", "P",
                     "00000004 3ff8000000000000 c002000000000000 4056800000000000 00 01"),
               ScreenPartMovePointEvent(1, 2, 3, "P", 4, 1.5, -2.25, 90.0, false, true)),
        golden(21, named("00000003 00000001 00000002", "Wall"),
               ScreenModeEvent(LV_NTC_ModeType::Parts, 1, 2, "Wall")),
        golden(22, named("00000001 00000002 00000003", "Go", "2366663030303000"),
               AddQuickKeyEvent(1, 2, 3, "Go", "#ff0000")),
        golden(23, named("00000001 00000002", "Go", "2330306666303000"),
               UpdateQuickKeyEvent(1, 2, "Go", "#00ff00")),
        golden(24, hex("00000001 00000002"), DeleteQuickKeyEvent(1, 2)),
        golden(25, hex("00002710"), ExecuteQuickKeyEvent(10'000)),
        golden(26, hex("00000002 00000003 00000004"), ConfigQuickKeyEvent(2, 3, 4)),
        golden(27, hex("2330303030383000 00000003"), UpdateSettingsEvent("#000080", 3)),
        goldenItemData(),
        golden(29, hex("89abcdef"), GetResourcesIdEvent(0x89abcdef)),
    };
}

using EventPointer = std::unique_ptr<Event>;

EventPointer decode(QByteArray frame) {
    return EventPointer(LVNtc::deserialize(frame).second);
}

LV_NTC_Header headerOf(const Event& event) {
    return {static_cast<std::uint32_t>(event.getSize()), event.type()};
}

QString print(const Event& event) {
    QString line;
    QDebug(&line) << event;
    return line.trimmed();
}

/// The payload of an item without any point, up to its four counts.
QByteArray itemWithoutCounts() {
    return ItemDataEvent().serialize().first(851);
}

} // namespace

class CodecTest : public GuardedTest {
    Q_OBJECT

private slots:
    void goldenBytes_data();
    void goldenBytes();
    void everyTruncationIsNoEvent_data() { goldenBytes_data(); }
    void everyTruncationIsNoEvent();
    void everyCodeHasANeutralEventAndGoldenBytes();
    void garbageIsHarmless();
    void lengthsAndCodesAreChecked();
    void textsOfAnySize();
    void doublesBitForBit();
    void pointCountsAreNotTrusted();
    void itemWithoutPoints();
    void refusedPayloadLeavesTheEventAlone();
};

void CodecTest::goldenBytes_data() {
    QTest::addColumn<int>("index");
    const auto all = goldenEvents();
    for (std::size_t i = 0; i < all.size(); ++i)
        QTest::addRow("%zu: %s", i, qPrintable(print(*all[i].event).section('(', 0, 0)))
            << static_cast<int>(i);
}

void CodecTest::goldenBytes() {
    QFETCH(int, index);
    const GoldenEvent golden = goldenEvents()[static_cast<std::size_t>(index)];
    // The size that an item announces leaves its four counts out.
    const int announced = static_cast<int>(golden.payload.size()) - (golden.code == 28 ? 32 : 0);
    QByteArray bytes = int32(9) + int32(announced) + char(golden.code) + golden.payload;

    QCOMPARE(golden.event->serialize().toHex(' '), golden.payload.toHex(' '));
    QCOMPARE(golden.event->getSize(), announced);
    QCOMPARE(LVNtc::serialize(headerOf(*golden.event), *golden.event), bytes);
    QCOMPARE(LVNtc::serializeHeader(headerOf(*golden.event)), bytes.first(9));
    QCOMPARE(LVNtc::serializeWithLength(headerOf(*golden.event), *golden.event), withLength(bytes));

    const eventData decoded = LVNtc::deserialize(bytes);
    const EventPointer event(decoded.second);
    QVERIFY(event);
    QCOMPARE(decoded.first, headerOf(*golden.event));
    QVERIFY2(*event == *golden.event, qPrintable(print(*event)));
    QCOMPARE(event->serialize(), golden.payload);

    // Another payload is another event.
    QByteArray changed = golden.payload;
    changed.back() = static_cast<char>(changed.back() ^ 1);
    golden.event->deserialize(changed);
    QVERIFY(!(*event == *golden.event));
}

void CodecTest::everyTruncationIsNoEvent() {
    QFETCH(int, index);
    const GoldenEvent golden = goldenEvents()[static_cast<std::size_t>(index)];
    const QByteArray whole = LVNtc::serialize(headerOf(*golden.event), *golden.event);
    messages_->allow(QRegularExpression("^Bad (header size|data size|point count): "));

    for (qsizetype length = 0; length < whole.size(); ++length) {
        messages_->clear();
        // A copy of its own, so that a read behind its end is found.
        QVERIFY(!decode(QByteArray(whole.constData(), length)));
        // Up to 3 bytes are no header at all, and not worth a line.
        QCOMPARE(messages_->count(QtWarningMsg), length < 4 ? 0 : 1);
    }
    // The same with a header that is honest about the missing bytes.
    const qsizetype smallest = golden.code == 28 ? 851 : golden.payload.size();
    for (qsizetype length = 1; length < smallest; ++length) {
        messages_->clear();
        QVERIFY(!decode(frame(golden.code, golden.payload.first(length))));
        QCOMPARE(messages_->seen(QtWarningMsg),
                 QStringList(QString("Bad data size: %1/%2").arg(smallest).arg(length)));
    }
}

void CodecTest::everyCodeHasANeutralEventAndGoldenBytes() {
    std::set<int> golden;
    for (const GoldenEvent& each : goldenEvents())
        golden.insert(each.code);
    for (int code = 1; code <= int(kEventCount); ++code) {
        QVERIFY2(golden.contains(code), qPrintable(QString::number(code)));
        const EventPointer event(LVNtc::getEvent(static_cast<unsigned char>(code)));
        QVERIFY(event);
        QCOMPARE(int(event->type()), code);
        QByteArray expected(event->getSize(), '\0');
        if (code == 6 || code == 8)
            expected.replace(0, 4, hex("ffffffff"));
        else if (code == 7)
            expected.replace(4, 4, hex("ffffffff"));
        else if (code == 27)
            expected.replace(0, 7, "#FFFFFF");
        if (code != 28)
            QCOMPARE(event->serialize(), expected);
    }
}

void CodecTest::garbageIsHarmless() {
    messages_->allow(QRegularExpression("^Bad |^Try to deserialize unknown event$"));
    QRandomGenerator random(20'000U);
    for (int round = 0; round < 400 * int(kEventCount); ++round) {
        const int code = round % (int(kEventCount) + 2);
        QByteArray payload(random.bounded(2000), Qt::Uninitialized);
        for (char& byte : payload)
            byte = static_cast<char>(random.bounded(256));
        if (payload.size() > 859) // a count of points that is at least sometimes believable
            payload.replace(851, 8, int64(random.bounded(4)));
        if (const EventPointer event = decode(frame(code, payload))) {
            QCOMPARE(int(event->type()), code);
            print(*event); // whatever is in the fields
            const EventPointer again = decode(LVNtc::serialize(headerOf(*event), *event));
            QVERIFY(again && *again == *event);
        }
        // A frame of which nothing is true, its lengths included.
        decode(payload);
        messages_->clear();
    }
}

void CodecTest::lengthsAndCodesAreChecked() {
    struct Row {
        const char* frame;
        const char* line; // a warning, or null
        std::uint32_t announced;
        int code;
        bool isEvent;
    };
    const Row rows[] = {
        {"", nullptr, 0, 0, false},
        {"00000009 00", "Bad header size: 9/5", 0, 0, false},
        {"00000009 00000004 19 000000", "Bad header size: 9/8", 0, 0, false},
        {"7fffffff 00000004 19 00000007", "Bad header size: 2147483647/9", 0, 0, false},
        {"00000009 7fffffff 19 00000007", "Bad header size: 9/-2147483634", 0, 0, false},
        // A payload size below zero passes that check, and fails the next.
        {"00000009 ffffffff 19 00000007", "Bad data size: 4294967295/4", 0xffffffff, 25, false},
        // What the header says of its own size matters for nothing else.
        {"00000003 00000004 19 00000007", nullptr, 4, 25, true},
        {"00000008 00000009 18 00000001 00000002", "Bad data size: 9/8", 9, 24, false},
        {"00000009 00000007 18 00000001 000000", "Bad data size: 8/7", 7, 24, false},
        // Announced fewer than needed, but they are there; and more than needed.
        {"00000009 00000001 18 00000001 00000002", nullptr, 1, 24, true},
        {"00000009 0000000a 18 00000001 00000002 ffff", nullptr, 10, 24, true},
        // Nothing announced is no event, whatever follows; and it is nothing to talk about.
        {"00000009 00000000 18 00000001 00000002", nullptr, 0, 24, false},
    };
    for (const Row& row : rows) {
        if (row.line)
            messages_->expect(QtWarningMsg, row.line);
        QByteArray bytes = hex(row.frame);
        const auto [header, decoded] = LVNtc::deserialize(bytes);
        const EventPointer event(decoded);
        QCOMPARE(header, (LV_NTC_Header{row.announced, LV_NTC_EventType(row.code)}));
        QVERIFY2(bool(event) == row.isEvent, row.frame);
        if (event && row.code == 24)
            QVERIFY(*event == DeleteQuickKeyEvent(1, 2));
    }
    messages_->expect(QtCriticalMsg, "Try to deserialize unknown event", 5);
    for (const int code : {0, 30, 127, -1, -128}) {
        QVERIFY(!decode(frame(code, int32(1))));
        QVERIFY(!LVNtc::getEvent(static_cast<unsigned char>(code)));
    }
}

void CodecTest::textsOfAnySize() {
    const QByteArray most(255, 'n');
    const QByteArray tooLong(256, 'n');
    QCOMPARE(MsgEvent(most).serialize(), text(most));
    messages_->expect(QtWarningMsg, "Size of message is too large");
    QCOMPARE(MsgEvent(tooLong).serialize(), text(""));
    messages_->expect(QtWarningMsg, "Size of name is too large");
    QCOMPARE(RemoveMediaEvent(1, 2, tooLong).serialize(), hex("00000001 00000002") + text(""));
    messages_->expect(QtWarningMsg, "Size of color is too large");
    QCOMPARE(UpdateSettingsEvent("#1234567", 1).serialize(), text("", 8) + int32(1));

    // Without a terminator, and with more than one byte a character.
    const EventPointer message = decode(frame(1, QByteArray(256, 'm')));
    QCOMPARE(dynamic_cast<MsgEvent&>(*message).message(), QString(256, 'm'));
    const EventPointer settings = decode(frame(27, "#1234567" + int32(0)));
    QCOMPARE(dynamic_cast<UpdateSettingsEvent&>(*settings).color(), "#1234567");
    const EventPointer umlaut = decode(frame(1, text("M\xc3\xb6we")));
    QCOMPARE(dynamic_cast<MsgEvent&>(*umlaut).message(), QString::fromUtf8("M\xc3\xb6we"));
}

void CodecTest::doublesBitForBit() {
    const QByteArray head = int32(1) + int32(2) + text("W") + int32(3);
    for (const char* digits :
         {"7ff8000000000000", "7ff4000000000001", "fff8dead00000000", "7ff0000000000000",
          "fff0000000000000", "8000000000000000", "0000000000000001", "400921fb54442d18"}) {
        const QByteArray payload = head + hex(digits) + hex(digits) + hex(digits) + hex("0100");
        const EventPointer event = decode(frame(19, payload));
        QVERIFY(event);
        QCOMPARE(event->serialize().toHex(), payload.toHex());
        QVERIFY(*event == *decode(frame(19, payload)));
    }
    QVERIFY(!(ScreenMovePointEvent(1, 2, "W", 3, 0.0, 0, 0, true, true) ==
              ScreenMovePointEvent(1, 2, "W", 3, -0.0, 0, 0, true, true)));
}

void CodecTest::pointCountsAreNotTrusted() {
    const QByteArray point(294, '\0');
    const QByteArray otherLists(24, '\0');
    const std::pair<QByteArray, QString> rows[] = {
        {int64(2) + point + point.first(293), "2/1"},
        {int64(INT64_MAX) + point + otherLists, "9223372036854775807/1"},
        {int64(INT64_C(1) << 62) + point + otherLists, "4611686018427387904/1"}, // times 294
        {int64(-1) + otherLists, "-1/0"},
        {int64(1) + point + int64(0) + int64(0) + int64(1), "1/0"}};
    for (const auto& [lists, counts] : rows) {
        messages_->expect(QtWarningMsg, "Bad point count: " + counts);
        QVERIFY2(!decode(frame(28, itemWithoutCounts() + lists)), qPrintable(counts));
    }
}

void CodecTest::itemWithoutPoints() {
    ItemDataEvent request(7);
    QCOMPARE(request.getSize(), 851);
    // From 851 bytes on it is an item, with as many points as there are bytes to say so.
    for (qsizetype length = 851; length <= 883; ++length) {
        const EventPointer event = decode(frame(28, request.serialize().first(length)));
        QVERIFY(event && *event == request);
    }
    // The second integer is carried as it is.
    QByteArray bytes = request.serialize();
    bytes.replace(4, 4, hex("fffffff0"));
    request.deserialize(bytes);
    QCOMPARE(request.serialize(), bytes);
}

void CodecTest::refusedPayloadLeavesTheEventAlone() {
    ItemDataEvent item(5);
    item.addMediaMovePointEvent({1, 2, 3, "Sea", 4, 1, 2, 0, true, true});
    const QByteArray before = item.serialize();
    QByteArray bad = itemWithoutCounts() + int64(1);
    messages_->expect(QtWarningMsg, "Bad point count: 1/0");
    item.deserialize(bad);
    QCOMPARE(item.serialize(), before);

    DeleteQuickKeyEvent key(1, 2);
    QByteArray tooShort(7, '\xff');
    key.deserialize(tooShort);
    QVERIFY(key == DeleteQuickKeyEvent(1, 2));
}

QTEST_GUILESS_MAIN(CodecTest)
#include "tst_codec.moc"
