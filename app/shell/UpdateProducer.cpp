#include "app/shell/UpdateProducer.h"

UpdateProducer::UpdateProducer(QObject* parent) : StoppableThread(parent) {}

UpdateProducer::~UpdateProducer() {
    stop();
}

void UpdateProducer::loop() {
    while (pause(tickPeriod))
        emit updateProducer();
    emit updateProducer(); // what came in since the last tick
}
