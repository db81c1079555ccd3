#pragma once

#include "app/Link.h"

#include <QWidget>

struct Configuration;
struct LinkLook;

/// Shows the Producer's address and the state of the connection to it, by shape, words and colour.
class LinkBadge final : public QWidget {
    Q_OBJECT

public:
    /// `configuration` outlives the badge.
    LinkBadge(const Configuration& configuration, QWidget* parent);

    void setLink(const Link& link);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] const LinkLook& look() const;
    [[nodiscard]] QString withTime(const QString& text) const;

    const Configuration& configuration_;
    Link link_;
};
