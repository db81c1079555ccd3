#pragma once

#include <QSignalMapper>
#include <QVBoxLayout>
#include <QWidget>

#include <list>
#include <memory>

class QPushButton;

/// A title and one button for each Producer's address; at most one is selected.
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

    /// Empty when nothing is selected.
    [[nodiscard]] const QString& selectedIp() const { return selectedIp_; }

public slots:
    /// Selects `ip`; an empty one clears the selection.
    void onIpClicked(const QString& ip);

signals:
    void selectedIpChanged(const QString& ip);

private:
    using Buttons = std::list<std::unique_ptr<QPushButton>>;
    [[nodiscard]] Buttons::iterator find(const QString& ip);

    QVBoxLayout layout_;
    QSignalMapper mapper_;
    Buttons buttons_; // the text of a button is its address
    QString selectedIp_;
};
