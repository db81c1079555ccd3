#pragma once

#include "pages/ControlPage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

struct Configuration;

/// Says how the Producer draws the points that this companion edits: whether at all, in which
/// colour and shape. Every change is sent at once, and everything again after each connection.
class SettingsPage final : public ControlPage {
    Q_OBJECT

public:
    /// `configuration` outlives the page.
    SettingsPage(const Configuration& configuration, QWidget* parent);

    /// Sends what the controls show; without a connection nothing happens.
    void sendNewSettings() const;
    void lockPage() override {}

public slots:
    void onUsePointsCheckBoxStateChanged(int state);
    void onPointsColorChanged(int index) const;
    void onPointsShapeChanged(int index) const;
    void onMeshpadConnected() const;

protected:
    bool event(QEvent* event) override;

private:
    void initPointsElements();
    /// A larger font than usual widens the points widget beyond its usual limits, rather than
    /// have its texts cut off.
    void makeRoom();

    const Configuration& configuration_;
    // Children of the page.
    QVBoxLayout* layout_;
    QWidget* points_;
    QGridLayout* pointsLayout_;
    QCheckBox* usePoints_;
    QLabel* colorLabel_;
    QComboBox* color_;
    QLabel* shapeLabel_;
    QComboBox* shape_;
};
