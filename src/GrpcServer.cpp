// SPDX-License-Identifier: Apache-2.0
#include "GrpcServer.h"

#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>
#include <grpcpp/security/server_credentials.h>

#include <exception>

#include "Log.h"
#include "ServerSetup.h"
#include "UnaryCall.h"

using zet::protobuf::app::Buttons;
using zet::protobuf::app::Quarlo_TV_GRPC;

const std::string& tv_server_address = *new std::string(MURLINK_DISPLAY_ENDPOINT);

namespace {

constexpr std::chrono::seconds kAddressDeadline{1};
constexpr std::chrono::seconds kLayoutDeadline{2};

constexpr int kCallbackNotSet = 4;

constexpr int kCallFailed = 4;
constexpr int kRefused = 6;

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

// ---- The one instance

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

// NOLINTNEXTLINE(performance-unnecessary-value-param): callers have it by value
bool FootTouch_Server::same_address(std::string other) const {
  return other == server_address;
}

std::string FootTouch_Server::get_address() const {
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

// The server thread. `server` is its own until it has said that it is settled.
void FootTouch_Server::serve(std::promise<void> settled, std::promise<void> left) {
  LOG_INFO("server_thread create start");
  try {
    grpc::ServerBuilder builder;
    LOG_INFO("Builder decleared");
    setLimits(builder);
    builder.AddListeningPort(server_address, grpc::InsecureServerCredentials());
    LOG_INFO("Builder listening port created");
    builder.RegisterService(_instance);
    LOG_INFO("Builder construction complete");
    server = build(builder);
  } catch (const std::exception& failure) {
    // Nobody above could catch it: it would end the process.
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
    // A thread that still builds its server would go on to wait for a shutdown that nobody sends.
    server_settled.wait();
  }
  if (server != nullptr) {
    LOG_INFO("shutting down");
    reports.shutDown(*server);
    // The thread may still be about to enter Wait, or on its way out of it.
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
  CallSite site;
  LogText begin;
  LogText request;
  LogText done;
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
  const RunningReports::One running(reports);
  const auto [call_back, data] = callback();
  if (!call_back) {
    LOG_AT(Level::Error, event.site, "callback not set");
    response.set_s(kCallbackNotSet);
    return grpc::Status::OK;
  }
  logLine(Level::Info, event.site, event.begin);
  logLine(Level::Info, event.site, event.request, request.x());
  call_back(request.x(), event.state, data);
  response.set_s(0);
  logLine(Level::Info, event.site, event.done);
  return grpc::Status::OK;
}

// A copy, so that a press sees the old pair or the new one, and may replace it itself.
std::pair<FootTouch_Server::ButtonCallback, void*> FootTouch_Server::callback() {
  const std::lock_guard<std::mutex> lock(callback_mutex);
  return {button_cb, user_data};
}

void FootTouch_Server::set_button_cb(ButtonCallback callback, void* data) {
  // The former callback is destroyed with the argument, after the lock has been let go.
  const std::lock_guard<std::mutex> lock(callback_mutex);
  button_cb.swap(callback);
  user_data = data;
}

// ---- Display

bool FootTouch_Server::sync_address() {
  LOG_INFO("sync_address");
  if (tv_stub == nullptr) {
    LOG_ERROR("sync_address failed, status not ok.");
    return false;
  }
  StringMessage request;
  request.set_s(server_address);
  UnaryCall call(&Quarlo_TV_GRPC::Stub::setFootTouchAPIServerAddress, request, kAddressDeadline);
  LOG_INFO("the address is :%s", server_address.c_str());
  LOG_INFO("send address");
  const Reply reply = call.send(*tv_stub);
  if (reply.status.error_code() == grpc::StatusCode::DEADLINE_EXCEEDED) {
    LOG_ERROR("time out");
    return false;
  }
  if (!reply.status.ok()) {
    LOG_ERROR("sync_address failed, status not ok.");
    return false;
  }
  if (reply.s != 0) {
    LOG_ERROR("unknown cause to failure, error code %d", reply.s);
    return false;
  }
  LOG_INFO("sync_address OK");
  return true;
}

int FootTouch_Server::send_button_info(std::vector<button>& buttons) {
  if (tv_stub == nullptr) {
    LOG_ERROR("send_button_info failed, status not ok.");
    return kCallFailed;
  }
  UnaryCall call(&Quarlo_TV_GRPC::Stub::setButtons, toMessage(buttons), kLayoutDeadline);
  const Reply reply = call.send(*tv_stub);
  if (!reply.status.ok()) {
    LOG_ERROR("send_button_info failed, status not ok.");
    return kCallFailed;
  }
  if (reply.s != 0) {
    LOG_ERROR("unknown cause to failure, error code %d", reply.s);
    return kRefused;
  }
  LOG_INFO("send_button_info successed");
  return 0;
}
