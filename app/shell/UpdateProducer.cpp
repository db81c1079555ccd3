#include "app/shell/UpdateProducer.h"

UpdateProducer::UpdateProducer(QObject* parent, const Timing& timing)
    : StoppableThread(parent), tickPeriod_(timing.tickPeriod) {}

UpdateProducer::~UpdateProducer() {
    stop();
}

void UpdateProducer::loop() {
    while (pause(tickPeriod_))
        emit updateProducer();
    emit updateProducer(); // for the moves since the last tick
}
