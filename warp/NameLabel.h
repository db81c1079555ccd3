#pragma once

#include <QLabel>

/// A label for a name from the network: shows it as plain text on one line, shortened in its middle
/// to the width there is; what is not shown whole is in its tool tip. text() stays the whole name.
class NameLabel final : public QLabel {
    Q_OBJECT

public:
    explicit NameLabel(QWidget* parent = nullptr);

    void setName(const QString& name);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QString shownText() const;
    void updateToolTip();
};
