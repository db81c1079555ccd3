#pragma once

#include <QLabel>

/// A label for a name from the network: one line of plain text, elided in the middle to the label's
/// width. The tool tip shows an elided name in full; text() is always the full name.
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
