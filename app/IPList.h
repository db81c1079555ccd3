#pragma once

#include <QSignalMapper>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>
#include <vector>

class QPushButton;

/// A title and one button for each Producer's address; at most one is selected. An address keeps
/// its place: it stays empty while the address is gone and others stand below it.
class IPList final : public QWidget {
    Q_OBJECT

public:
    explicit IPList(QWidget* parent);
    ~IPList() override;

    /// Does nothing when `ip` is listed already.
    void addIP(const QString& ip);
    /// Does nothing when `ip` is not listed. A selected address stays selected.
    void removeIp(const QString& ip);
    void purgeIp();
    /// Keeps its height while held, because a finger presses an address or scrolls: places at the
    /// end stay empty, too.
    void hold(bool isHeld);

    /// Empty when nothing is selected.
    [[nodiscard]] const QString& selectedIp() const { return selectedIp_; }
    /// Selects the next listed address in that direction, 1 or -1, and moves the focus to it;
    /// without a selection the first or last one. Does nothing at the ends.
    void selectNext(int step);

public slots:
    /// Selects `ip`; an empty one clears the selection.
    void onIpClicked(const QString& ip);

signals:
    void selectedIpChanged(const QString& ip);
    /// The address of `button` was selected by key, so it should be scrolled into view.
    void walkedTo(QWidget* button);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Place {
        QString ip;
        std::unique_ptr<QPushButton> button; ///< null while the address is gone
    };
    using Places = std::vector<Place>;

    [[nodiscard]] Places::iterator find(const QString& ip);
    [[nodiscard]] std::unique_ptr<QPushButton> makeButton(const QString& ip);
    /// Forgets the oldest address that is gone when there are too many.
    void limitPlaces();
    void layOut();

    QVBoxLayout layout_;
    QSignalMapper mapper_;
    Places places_; // in order of discovery
    QString selectedIp_;
    bool isHeld_ = false;
};
