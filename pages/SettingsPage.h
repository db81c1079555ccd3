#pragma once

#include "pages/ControlPage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

struct Configuration;

/// Sets whether the Producer draws the points that this companion edits, and in which colour and
/// shape. Sends every change at once, and all settings after each connection.
class SettingsPage final : public ControlPage {
    Q_OBJECT

public:
    /// `configuration` outlives the page.
    SettingsPage(const Configuration& configuration, QWidget* parent);

    /// Sends the state of the controls; does nothing without a connection.
    void sendNewSettings() const;
    void lockPage() override {}

public slots:
    void onUsePointsCheckBoxStateChanged(int state);
    // Relays: each calls sendNewSettings().
    void onPointsColorChanged(int /*index*/) const { sendNewSettings(); }
    void onPointsShapeChanged(int /*index*/) const { sendNewSettings(); }
    void onMeshpadConnected() const { sendNewSettings(); }

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void initPointsElements();
    /// Lets a large font widen the points widget beyond its usual maximum.
    void fitPointsToContents();

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
