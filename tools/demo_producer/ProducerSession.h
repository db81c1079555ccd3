#pragma once

#include "network/CompanionServer.h"
#include "tools/demo_producer/Show.h"

#include <deque>

/// The state of a connected companion.
struct Companion {
    QString address;
    std::optional<ItemKey> editing; ///< the item whose mesh it requested last
    bool editsUv = false;           ///< its last move was of a texture coordinate
    QString pointColor;             ///< of its points on the outputs, "#rrggbb"
    int pointShape = 0;             ///< 0 none, 1 small point, 2 cross, 3 circle, 4 square
};

/// A Producer without a window: plays shows, and lets any number of companions edit them. Sends
/// every change to all companions; logs and ignores invalid events.
class ProducerSession : public QObject {
    Q_OBJECT

public:
    /// Plays the first of the shows; there must be at least one.
    ProducerSession(std::vector<Show> shows, QObject* parent);

    bool listen(const QHostAddress& address, quint16 port);
    [[nodiscard]] quint16 port() const { return server_.port(); }

    [[nodiscard]] const Show& show() const { return show_; }
    [[nodiscard]] const std::map<int, Companion>& companions() const { return companions_; }
    /// The last 100 executed keys, the newest at the end.
    [[nodiscard]] const std::deque<quint32>& executedQuickKeys() const { return executed_; }
    /// The number of decoded events by type.
    [[nodiscard]] const std::map<QString, qint64>& receivedEvents() const { return received_; }
    [[nodiscard]] int showsStarted() const { return showsStarted_; }

    // Edits by the operator at the Producer. They return false and change nothing when the item
    // does not exist or a value is out of range.
    bool movePoint(const ItemKey& key, bool xy, quint32 point, QPointF position);
    bool setDeformation(const ItemKey& key, Warp::Kind kind, int rows, int columns, bool reset);
    bool setMode(const ItemKey& key, NetworkCompanion::LV_NTC_ModeType mode);
    bool setBlinded(const ItemKey& key, bool blinded);
    bool setPattern(NetworkCompanion::LV_NTC_PictureType pattern);
    bool addItem(const ShowItem& item);
    bool removeItem(const ItemKey& key);
    bool setQuickKeyGrid(int rows, int columns);
    bool setQuickKey(quint32 id, const QuickKey& key);
    bool deleteQuickKey(quint32 id);
    /// Plays the next show in its initial state, and asks companions to request its resources.
    void startNewShow();
    void disconnectCompanions();

signals:
    /// Anything that this class returns has changed.
    void changed();
    /// A line for the log.
    void logged(const QString& line);
    void quickKeyExecuted(quint32 id, const QString& name, const QString& color);

private:
    void onCompanionConnected(int id);
    void onCompanionDisconnected(int id);
    void onEventReceived(int id, const NetworkCompanion::eventData& data);
    /// Applies the event; returns its result for the log.
    QString handle(int id, const NetworkCompanion::Event& event);
    QString onMessage(int id, const QString& message);
    QString onItemDataRequest(int id, int dataIndex);
    template <typename MoveEvent>
    QString onMove(int id, const ItemKey& key, const MoveEvent& move);
    template <typename DeformationEvent>
    QString onDeformation(const ItemKey& key, const DeformationEvent& event);
    QString onBlind(const ItemKey& key, bool blinded);
    QString onPattern(int id, NetworkCompanion::LV_NTC_PictureType pattern);
    QString onSettings(int id, const QString& color, int shape);
    QString onQuickKey(quint32 id);
    bool applyDeformation(const ItemKey& key, Warp::Kind kind, quint32 rows, quint32 columns,
                          bool reset);
    void stopEditing(int id);
    void log(const QString& line);

    const std::vector<Show> shows_;
    std::size_t showIndex_ = 0;
    int showsStarted_ = 1;
    Show show_;
    std::map<int, Companion> companions_;
    std::deque<quint32> executed_;
    std::map<QString, qint64> received_;
    NetworkCompanion::CompanionServer server_;
};
