// SPDX-License-Identifier: Apache-2.0
#include "peers/DisplaySide.h"

#include "Quarlo_TV_Server.grpc.pb.h"
#include "common/Printable.h"
#include "peers/Call.h"

namespace simulator {
namespace {

Layout layoutOf(const zet::protobuf::app::Buttons& buttons) {
  Layout layout;
  for (const auto& button : buttons.buttons()) {
    layout.push_back({button.id(), button.start(), button.ending()});
  }
  return layout;
}

std::string drawingOf(const Layout& layout) {
  std::string lines = "\n" + picture(layout) + "\n" + table(layout);
  lines.pop_back();  // the output ends the last line
  return lines;
}

class DisplayService final : public zet::protobuf::app::Quarlo_TV_GRPC::Service {
 public:
  DisplayService(Peers& peers, StopSignal& stop) : peers_(peers), stop_(stop) {}

  grpc::Status setFootTouchAPIServerAddress(grpc::ServerContext* context,
                                            const StringMessage* request,
                                            StatusResponse* response) override {
    Call call{"display", "setFootTouchAPIServerAddress", {}, {}, {}, {}};
    call.request = {printable(request->s()), {{"address", request->s()}}};
    call.behave = [&] {
      peers_.display.setAddress(request->s());
      return 0;
    };
    return handle(peers_, stop_, call, *context, *response);
  }

  grpc::Status setButtons(grpc::ServerContext* context, const zet::protobuf::app::Buttons* request,
                          StatusResponse* response) override {
    const Layout layout = layoutOf(*request);
    Call call{"display", "setButtons", {}, {}, drawingOf(layout), {}};
    call.request = {"with " + countOf(layout), {{"buttons", records(layout)}}};
    call.behave = [&] {
      peers_.display.setLayout(layout);
      return 0;
    };
    return handle(peers_, stop_, call, *context, *response);
  }

 private:
  Peers& peers_;
  StopSignal& stop_;
};

}  // namespace

DisplaySide::DisplaySide(const std::string& address, Peers& peers, StopSignal& stop)
    : PeerServer(address, std::make_unique<DisplayService>(peers, stop)) {}

}  // namespace simulator
