#include "app/shell/UpdateProducer.h"

UpdateProducer::UpdateProducer(QObject* parent) : StoppableThread(parent) {}

UpdateProducer::~UpdateProducer() {
    stop();
}

void UpdateProducer::loop() {
    while (pause(tickPeriod))
        emit updateProducer();
    emit updateProducer(); // for the moves since the last tick
}
