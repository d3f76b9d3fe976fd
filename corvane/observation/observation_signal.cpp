#include "corvane/observation/observation_signal.hpp"

namespace corvane {

ObservationConnection ObservationSignal::connect(std::function<void()> callback) {
  return ObservationConnection::make(std::move(callback),
                                     [this](std::function<void()> gated) { return signal_.connect(std::move(gated)); });
}

void ObservationSignal::operator()() {
  signal_();
}

}  // namespace corvane
