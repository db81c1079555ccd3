#pragma once

#include "network/CompanionServer.h"
#include "tools/demo_producer/Show.h"

#include <deque>

/// A connected companion, as far as the Producer knows it.
struct Companion {
    QString address;
    std::optional<ItemKey> editing; ///< the item whose mesh it asked for last
    bool editsUv = false;           ///< whether its last move was of a texture coordinate
    QString pointColor;             ///< how its points are drawn on the outputs, "#rrggbb"
    int pointShape = 0;             ///< 0 not at all, 1 small point, 2 cross, 3 circle, 4 square
};

/// The Producer without its picture: plays shows, and lets any number of companions edit them.
/// Every change, whoever makes it, goes to all companions; what makes no sense is logged and
/// ignored.
class ProducerSession : public QObject {
    Q_OBJECT

public:
    /// Starts with the first of the shows, of which there is at least one.
    ProducerSession(std::vector<Show> repertoire, QObject* parent);

    bool listen(const QHostAddress& address, quint16 port);
    [[nodiscard]] quint16 port() const { return server_.port(); }

    [[nodiscard]] const Show& show() const { return show_; }
    [[nodiscard]] const std::map<int, Companion>& companions() const { return companions_; }
    /// The newest keys that were executed, the last one at the end; at most a hundred.
    [[nodiscard]] const std::deque<quint32>& executedQuickKeys() const { return executed_; }
    /// How many events of each type were received and made sense as an event.
    [[nodiscard]] const std::map<QString, qint64>& receivedEvents() const { return received_; }
    [[nodiscard]] int showsStarted() const { return showsStarted_; }

    // What the operator at the Producer itself can do. False, and nothing happens, when it cannot
    // be.
    bool movePoint(const ItemKey& key, bool xy, quint32 point, QPointF place);
    bool setDeformation(const ItemKey& key, Warp::Kind kind, int rows, int columns, bool reset);
    bool setMode(const ItemKey& key, NetworkCompanion::LV_NTC_ModeType mode);
    bool setBlinded(const ItemKey& key, bool blinded);
    bool setPattern(NetworkCompanion::LV_NTC_PictureType pattern);
    bool addItem(const ShowItem& item);
    bool removeItem(const ItemKey& key);
    bool setQuickKeyGrid(int rows, int columns);
    bool setQuickKey(quint32 id, const QuickKey& key);
    bool deleteQuickKey(quint32 id);
    /// The next show of the repertoire, as it was at first; companions are told to ask for it.
    void startNewShow();
    void disconnectCompanions();

signals:
    /// Anything of what can be asked here is different now.
    void changed();
    /// A single line for whoever follows what is going on.
    void logged(const QString& line);
    void quickKeyExecuted(quint32 id, const QString& name, const QString& color);

private:
    struct Move;

    void onCompanionConnected(int id);
    void onCompanionDisconnected(int id);
    void onEventReceived(int id, const NetworkCompanion::eventData& data);
    /// What was done about the event, for the log.
    QString handle(int id, const NetworkCompanion::Event& event);
    QString onMessage(int id, const QString& message);
    QString onItemDataRequest(int id, int dataIndex);
    QString onMove(int id, const Move& move);
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

    const std::vector<Show> repertoire_;
    std::size_t playing_ = 0;
    int showsStarted_ = 1;
    Show show_;
    std::map<int, Companion> companions_;
    std::deque<quint32> executed_;
    std::map<QString, qint64> received_;
    NetworkCompanion::CompanionServer server_;
};
