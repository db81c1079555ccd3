#include "network/FrameReader.h"
#include "network/events/EventTable.h"
#include "network/events/ProtocolLimits.h"
#include "tests/support/GuardedTest.h"
#include "tests/support/ProtocolBytes.h"

#include <QTest>

#include <algorithm>
#include <ctime>

using namespace NetworkCompanion;
using namespace MeshpadTest;

namespace {

QByteArray key(int id, const QByteArray& rest = "") {
    return withLength(frame(25, int32(id) + rest));
}

struct Reader : FrameReader {
    /// Appends the bytes as one chunk. Returns the ids of the keys that are complete, 0 for a frame
    /// without event, until reading stops.
    QList<int> read(const QByteArray& chunk) {
        append(chunk.size(), [&](char* out, qsizetype size) {
            std::ranges::copy(chunk, out);
            return size;
        });
        QList<int> ids;
        while (const auto frame = next()) {
            const std::unique_ptr<Event> event(frame->second);
            const auto* pressed = dynamic_cast<const ExecuteQuickKeyEvent*>(event.get());
            ids.append(pressed ? int(pressed->keyId()) : 0);
        }
        return ids;
    }
};

} // namespace

class FrameReaderTest : public GuardedTest {
    Q_OBJECT

private slots:
    void readsFramesFromChunks_data() {
        QTest::addColumn<int>("size");
        for (int size = 1; size <= 51; ++size)
            QTest::addRow("each of %d bytes", size) << size;
    }
    void readsFramesFromChunks() {
        QFETCH(int, size);
        messages_->expect(QtCriticalMsg, "Try to deserialize unknown event");
        QByteArray stream = key(1) + withLength(frame(30, int32(2))) + key(3);
        Reader reader;
        QList<int> ids;
        for (; !stream.isEmpty(); stream.remove(0, size))
            ids += reader.read(stream.left(size));
        QCOMPARE(ids, QList<int>({1, 0, 3}));
        const QString line("Invalid header size. Size must be at least 4 bytes, we read %1");
        QCOMPARE(messages_->seen(QtCriticalMsg).contains(line.arg(size)), size < 4);
    }

    void stopsAtLengthWithoutFrame() {
        messages_->expect(QtCriticalMsg, "Invalid frame length -1");
        messages_->expect(QtCriticalMsg, "Invalid frame length -2147483648");
        Reader reader;
        QCOMPARE(reader.read(key(1) + int32(0) + key(2)), QList<int>({1}));
        QCOMPARE(reader.read(int32(-1) + key(3)), QList<int>({2}));
        QCOMPARE(reader.read(hex("80000000")), QList<int>({3}));
        QCOMPARE(reader.read(key(4)), QList<int>({4}));
    }

    void skipsTooLongFrame() {
        constexpr int kLongest = Limits::kMaxFrameLength;
        messages_->expect(QtCriticalMsg, "Frame of 16777217 bytes is too large, skipped", 2);
        const QByteArray longest = key(2, QByteArray(kLongest - 13, 'x'));
        const QByteArray tooLong = int32(kLongest + 1) + longest.sliced(4) + "x";
        Reader reader;
        QCOMPARE(reader.read(longest + key(3)), QList<int>({2, 3}));
        QCOMPARE(reader.read(tooLong + key(4) + tooLong.first(1000)), QList<int>({4}));
        QVERIFY(reader.bytesWaiting() == 0 && reader.wantsBytes());
        QCOMPARE(reader.read(tooLong.sliced(1000) + key(5)), QList<int>({5}));
        reader.read(int32(0).repeated(FrameReader::kReadAhead));
        QVERIFY(!reader.wantsBytes());
    }

    void readsManyFramesInLinearTime_data() {
        QTest::addColumn<QByteArray>("frame");
        QTest::newRow("small") << key(1);
        // Each takes its fields from those behind it and finds a count of points in the last one.
        QTest::newRow("forged") << withLength(frame(28, QByteArray(11, 'x') + int64(1000) + "xxx"));
    }
    void readsManyFramesInLinearTime() {
        QFETCH(QByteArray, frame);
        messages_->allow(QRegularExpression("^Bad data size: 851/"));
        const std::clock_t start = std::clock(); // not the wall time of a busy machine
        QCOMPARE(Reader().read(frame.repeated(100'000)).size(), 100'000);
        QVERIFY(std::clock() - start < 10 * CLOCKS_PER_SEC);
    }
};

QTEST_GUILESS_MAIN(FrameReaderTest)
#include "tst_frame_reader.moc"
