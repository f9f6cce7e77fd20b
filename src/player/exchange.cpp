#include "player/exchange.h"

namespace tavek {

void Exchange::seek(std::int64_t positionUs) {
  const unsigned round = ++round_;
  soundClock.seek(round);
  picturePackets.clear();
  soundPackets.clear();
  pictures.clear();
  post({positionUs, round});
}

void Exchange::startReading() {
  soundClock.seek(round_);
  post({0, round_});
}

void Exchange::post(SeekRequest request) {
  *request_.hold() = request;
  requested_.notify_all();
}

std::optional<SeekRequest> Exchange::waitForRequest() {
  auto request = request_.hold();
  requested_.wait_for(request.lock(), std::chrono::milliseconds(50),
                      [&] { return request->has_value() || closed_; });
  return std::exchange(*request, std::nullopt);
}

void Exchange::close() {
  closed_ = true;
  picturePackets.close();
  soundPackets.close();
  pictures.close();
  requested_.notify_all();
}

void Exchange::fail(std::exception_ptr error) {
  *error_.hold() = std::move(error);
  close();
}

}  // namespace tavek
