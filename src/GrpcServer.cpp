// SPDX-License-Identifier: Apache-2.0
#include "GrpcServer.h"

#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>
#include <grpcpp/security/server_credentials.h>

#include <exception>

#include "Log.h"
#include "NeverDestroyed.h"
#include "ServerSetup.h"
#include "UnaryCall.h"

using zet::protobuf::app::Buttons;
using zet::protobuf::app::Quarlo_TV_GRPC;

const std::string& tv_server_address =
    murlink::neverDestroyed<const std::string>(MURLINK_DISPLAY_ENDPOINT);

// ---- The instance

FootTouch_Server* FootTouch_Server::_instance = nullptr;

FootTouch_Server* FootTouch_Server::getInstance() {
  if (_instance == nullptr) {
    _instance = new FootTouch_Server;
    LOG_INFO("new FootTouch_Server %p", static_cast<void*>(_instance));
  }
  LOG_INFO("FootTouch_Server Instance get %p ", static_cast<void*>(_instance));
  return _instance;
}

void FootTouch_Server::releaseInstance(int shutdown_first) {
  LOG_INFO("0522 0522 release");
  if (_instance != nullptr) {
    if (shutdown_first == 1) {
      _instance->terminate_server();
    }
    delete _instance;
    LOG_INFO("delete FootTouch_Server");
    _instance = nullptr;
  }
  LOG_INFO("Instance Released");
}

FootTouch_Server::FootTouch_Server() {
  _instance = nullptr;
}

FootTouch_Server::~FootTouch_Server() {
  LOG_INFO("~FootTouch_Server");
}

// ---- Lifecycle

int FootTouch_Server::initialize(std::string listening_address) {
  server_address = std::move(listening_address);
  LOG_INFO("foot touch api server address set to: %s", server_address.c_str());
  tv_channel = grpc::CreateChannel(tv_server_address, grpc::InsecureChannelCredentials());
  tv_stub = Quarlo_TV_GRPC::NewStub(tv_channel);
  if (!sync_address()) {
    LOG_ERROR("failed to sync address with tv server");
    return 1;
  }
  LOG_INFO("initialized.");
  return 0;
}

// The signatures of these two are fixed.
// NOLINTNEXTLINE(performance-unnecessary-value-param,readability-make-member-function-const)
bool FootTouch_Server::same_address(std::string other) {
  return other == server_address;
}

// NOLINTNEXTLINE(readability-make-member-function-const)
std::string FootTouch_Server::get_address() {
  return server_address;
}

void FootTouch_Server::run_server() {
  if (server_thread != nullptr && server_thread->joinable()) {
    LOG_ERROR("WARNING: run_server called when server already running");
    return;
  }
  if (server_address.empty()) {
    LOG_ERROR("ERROR: server address not found, abort.");
    return;
  }
  std::promise<void> settled;
  std::promise<void> left;
  server_settled = settled.get_future();
  server_left = left.get_future();
  server_thread = std::make_unique<std::thread>(&FootTouch_Server::serve, this, std::move(settled),
                                                std::move(left));
  LOG_INFO("%s",
           server_thread->joinable() ? "server_thread started" : "server_thread failed to start");
}

// The body of the server thread. Until it fulfils `settled`, no other thread may use `server`.
void FootTouch_Server::serve(std::promise<void> settled, std::promise<void> left) {
  LOG_INFO("server_thread create start");
  try {
    grpc::ServerBuilder builder;
    LOG_INFO("Builder decleared");
    murlink::setLimits(builder);
    builder.AddListeningPort(server_address, grpc::InsecureServerCredentials());
    LOG_INFO("Builder listening port created");
    builder.RegisterService(_instance);
    LOG_INFO("Builder construction complete");
    server = murlink::build(builder);
  } catch (const std::exception& failure) {
    // On this thread nothing else would catch it, and the process would end.
    LOG_ERROR("cannot listen on %s: %s", server_address.c_str(), failure.what());
    settled.set_value();
    return;
  }
  if (server == nullptr) {
    LOG_ERROR("cannot listen on %s: the port is taken, or the address is not on this machine",
              server_address.c_str());
    settled.set_value();
    return;
  }
  LOG_INFO("Server listening on %s", server_address.c_str());
  settled.set_value();
  server->Wait();
  left.set_value();
}

void FootTouch_Server::terminate_server() {
  LOG_INFO("terminate_server");
  const bool has_thread = server_thread != nullptr && server_thread->joinable();
  if (has_thread) {
    // A thread that is still building its server would wait afterwards for a shutdown that has
    // already happened.
    server_settled.wait();
  }
  if (server != nullptr) {
    LOG_INFO("shutting down");
    callbacks.shutDown(*server, server_address);
    // The thread may still be entering or leaving Wait().
    server_left.wait();
    server.reset();
    LOG_ERROR("server shutdown");
  } else {
    LOG_ERROR("server not running");
  }
  if (has_thread) {
    server_thread->join();
    server_thread.reset();
    server_address.clear();
    LOG_INFO("server terminated.");
  } else {
    LOG_ERROR("WARNING: server thread not running");
  }
  LOG_INFO("0522 0522 done terminate");
}

// ---- Presses

struct FootTouch_Server::Event {
  int state;
  murlink::CallSite site;
  murlink::LogText begin;
  murlink::LogText request;
  murlink::LogText done;
};

grpc::Status FootTouch_Server::service_On(grpc::ServerContext* /*context*/,
                                          const IntMessage* request, StatusResponse* response) {
  return report({1, HERE, "button_cb for service on", "the request is %d and the state is 1 (on)",
                 "button_cb for service on done"},
                *request, *response);
}

grpc::Status FootTouch_Server::service_Off(grpc::ServerContext* /*context*/,
                                           const IntMessage* request, StatusResponse* response) {
  return report({0, HERE, "button_cb for service off", "the request is %d and the state is 0 (off)",
                 "button_cb for service off done"},
                *request, *response);
}

grpc::Status FootTouch_Server::report(const Event& event, const IntMessage& request,
                                      StatusResponse& response) {
  constexpr int kCallbackNotSet = 4;
  const murlink::RunningCallbacks::Running running(callbacks);
  const Callback callback = currentCallback();
  if (!callback.function) {
    LOG_AT(murlink::Level::Error, event.site, "callback not set");
    response.set_s(kCallbackNotSet);
    return grpc::Status::OK;
  }
  logLine(murlink::Level::Info, event.site, event.begin);
  logLine(murlink::Level::Info, event.site, event.request, request.x());
  callback.function(request.x(), event.state, callback.data);
  response.set_s(0);
  logLine(murlink::Level::Info, event.site, event.done);
  return grpc::Status::OK;
}

FootTouch_Server::Callback FootTouch_Server::currentCallback() {
  const std::lock_guard<std::mutex> lock(callback_mutex);
  return {callback_owner, button_cb, user_data};
}

void FootTouch_Server::set_button_cb(ButtonCallback callback, void* data) {
  auto owner = callback ? std::make_shared<ButtonCallback>(std::move(callback)) : nullptr;
  ButtonCallback function = owner ? ButtonCallback(std::ref(*owner)) : nullptr;
  // The former callback is destroyed at the end, without the lock, unless a press still calls it.
  const std::lock_guard<std::mutex> lock(callback_mutex);
  callback_owner.swap(owner);
  button_cb.swap(function);
  user_data = data;
}

// ---- Display

namespace murlink {
namespace {

constexpr char kUnknown[] = "unknown cause to failure, error code %d";

constexpr int kAddressLost = 1;
constexpr Verdict kAddressRefused{Level::Error, kUnknown, kAddressLost};
constexpr CallRow<Quarlo_TV_GRPC::Stub, StringMessage> kSetAddress{
    &Quarlo_TV_GRPC::Stub::setFootTouchAPIServerAddress,
    std::chrono::seconds(1),
    {/*done*/ {Level::Info, "sync_address OK", 0},
     /*already*/ kAddressRefused,
     /*gone*/ kAddressRefused,
     /*unknown*/ kAddressRefused,
     /*timed_out*/ {Level::Error, "time out", kAddressLost},
     /*not_ok*/ {Level::Error, "sync_address failed, status not ok.", kAddressLost}}};

constexpr Verdict kLayoutRefused{Level::Error, kUnknown, 6};
constexpr Verdict kLayoutLost{Level::Error, "send_button_info failed, status not ok.", 4};
constexpr CallRow<Quarlo_TV_GRPC::Stub, Buttons> kSetButtons{
    &Quarlo_TV_GRPC::Stub::setButtons,
    std::chrono::seconds(2),
    {/*done*/ {Level::Info, "send_button_info successed", 0},
     /*already*/ kLayoutRefused,
     /*gone*/ kLayoutRefused,
     /*unknown*/ kLayoutRefused,
     /*timed_out*/ kLayoutLost,
     /*not_ok*/ kLayoutLost}};

StringMessage toMessage(const std::string& text) {
  StringMessage message;
  message.set_s(text);
  return message;
}

Buttons toMessage(const std::vector<button>& buttons) {
  Buttons message;
  for (const button& one : buttons) {
    auto* const added = message.add_buttons();
    added->set_id(one.id);
    added->set_start(one.start);
    added->set_ending(one.end);
  }
  return message;
}

}  // namespace
}  // namespace murlink

// Without initialize() there is no stub, and both calls fail without being sent.

bool FootTouch_Server::sync_address() {
  LOG_INFO("sync_address");
  murlink::UnaryCall call(murlink::kSetAddress, murlink::toMessage(server_address));
  if (tv_stub != nullptr) {
    LOG_INFO("the address is :%s", server_address.c_str());
    LOG_INFO("send address");
    call.send(*tv_stub);
  }
  return call.conclude(HERE) == 0;
}

int FootTouch_Server::send_button_info(std::vector<button>& buttons) {
  murlink::UnaryCall call(murlink::kSetButtons, murlink::toMessage(buttons));
  if (tv_stub != nullptr) {
    call.send(*tv_stub);
  }
  return call.conclude(HERE);
}
