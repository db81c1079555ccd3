#pragma once

#include <QLabel>
#include <QStringList>

/// A label for a name from the network: two lines of plain text. Of a name that is too long the
/// beginning is shown, and the part in which it differs from others. The tool tip shows it whole;
/// text() is always the full name.
class NameLabel final : public QLabel {
    Q_OBJECT

public:
    explicit NameLabel(QWidget* parent = nullptr);

    /// `common` is the number of leading characters that other names have, too.
    void setName(const QString& name, qsizetype common);
    /// Both lines with a line break between them.
    [[nodiscard]] QString shownText() const { return lines_.join(QLatin1Char('\n')); }

    /// The name as the plain text of a tool tip.
    [[nodiscard]] static QString toolTipOf(const QString& name);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void layOut();
    /// The second line of a name that does not fit, of which the first has `first` characters.
    [[nodiscard]] QString elidedLine(const QString& name, qsizetype first) const;

    qsizetype common_ = 0;
    QStringList lines_;
};
