// SPDX-License-Identifier: Apache-2.0
#include "DisplayService.h"

#include "Handling.h"

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
  lines.pop_back();  // the journal ends the last line
  return lines;
}

}  // namespace

grpc::Status DisplayService::setFootTouchAPIServerAddress(grpc::ServerContext* context,
                                                          const StringMessage* request,
                                                          StatusResponse* response) {
  Call call{"display", "setFootTouchAPIServerAddress", {}, {}, {}, {}};
  call.request = {request->s(), {{"address", request->s()}}};
  call.behave = [&] {
    simulation_.display.setAddress(request->s());
    return 0;
  };
  return handle(simulation_, call, *context, *response);
}

grpc::Status DisplayService::setButtons(grpc::ServerContext* context,
                                        const zet::protobuf::app::Buttons* request,
                                        StatusResponse* response) {
  const Layout layout = layoutOf(*request);
  Call call{"display", "setButtons", {}, {}, drawingOf(layout), {}};
  call.request = {"of " + countOf(layout), {{"buttons", records(layout)}}};
  call.behave = [&] {
    simulation_.display.setLayout(layout);
    return 0;
  };
  return handle(simulation_, call, *context, *response);
}

}  // namespace simulator
