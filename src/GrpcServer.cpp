// SPDX-License-Identifier: Apache-2.0
#include "GrpcServer.h"

#include <grpc/grpc.h>
#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>
#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server_builder.h>

#include <exception>

#include "Log.h"
#include "UnaryCall.h"

using zet::protobuf::app::Buttons;
using zet::protobuf::app::Quarlo_TV_GRPC;

const std::string& tv_server_address = *new std::string(MURLINK_DISPLAY_ENDPOINT);

namespace {

constexpr std::chrono::seconds kAddressDeadline{1};
constexpr std::chrono::seconds kLayoutDeadline{2};

// How long clients have at the end to take the last answer and to say goodbye.
constexpr std::chrono::seconds kFarewell{1};

// Per connection. A recogniser that has more to report at once queues it at its own end; a stranger
// cannot have more threads wait in the callback.
constexpr int kCallsAtOnce = 100;

// A press has a few bytes. The rest is for fields that a newer recogniser may add; gRPC's own limit
// would let a stranger keep 4 MiB here for each call.
constexpr int kLargestMessage = 64 * 1024;

// A connection on which gRPC has not spoken by then is closed; gRPC would keep its descriptor for
// 120 s. Idle recognisers, which have spoken, are left alone: closing their connections, or asking for
// signs of life, loses presses now and then.
constexpr int kSilenceLimitMs = 5000;

constexpr int kCallbackNotSet = 4;

constexpr int kCallFailed = 4;
constexpr int kRefused = 6;

void limitClients(grpc::ServerBuilder& builder) {
  builder.AddChannelArgument(GRPC_ARG_SERVER_HANDSHAKE_TIMEOUT_MS, kSilenceLimitMs);
  builder.AddChannelArgument(GRPC_ARG_MAX_CONCURRENT_STREAMS, kCallsAtOnce);
  builder.SetMaxReceiveMessageSize(kLargestMessage);
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

// gRPC destroys what it builds servers with while the process ends, when another thread may still
// initialise foot touch. Our static objects go before gRPC's: the last of the builds is waited for,
// and none begins after it.
std::mutex building;
bool process_ends = false;

struct LastBuild {
  ~LastBuild() {
    const std::lock_guard<std::mutex> lock(building);
    process_ends = true;
  }
} last_build;

std::unique_ptr<grpc::Server> build(grpc::ServerBuilder& builder) {
  const std::lock_guard<std::mutex> lock(building);
  return process_ends ? nullptr : builder.BuildAndStart();
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
    // Without this a second process could listen on the same port and would get half of the
    // presses.
    builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
    limitClients(builder);
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
    shut_down();
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

// Waits for running callbacks without limit. A client that has begun a call and says no more, or does
// not take leave, would be waited for as well, some for ever: it is cut off.
void FootTouch_Server::shut_down() {
  std::promise<void> done;
  const auto watch = std::async(std::launch::async, &FootTouch_Server::cut_off_the_silent, this,
                                done.get_future());
  server->Shutdown();
  done.set_value();
}

// On a thread of its own, beside Shutdown(). A press that has not reached its callback by now never
// will, so nothing is lost once all callbacks have returned and their answers have had their time.
void FootTouch_Server::cut_off_the_silent(const std::future<void>& done) {
  unsigned reported_before = reports_ended;
  while (done.wait_for(kFarewell) == std::future_status::timeout) {
    const unsigned reported = reports_ended;
    if (reports_running == 0 && reported == reported_before) {
      grpc_server_cancel_all_calls(server->c_server());
    }
    reported_before = reported;
  }
}

// ---- Presses

struct FootTouch_Server::Event {
  int state;
  CallSite site;
  const char* begin;
  const char* request;
  const char* done;
};

// Counts a report as running while it lives, even when the callback throws.
class FootTouch_Server::Running {
 public:
  explicit Running(FootTouch_Server& server) : server_(server) { ++server_.reports_running; }
  ~Running() {
    ++server_.reports_ended;
    --server_.reports_running;
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  FootTouch_Server& server_;
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
  const Running running(*this);
  const auto [call_back, data] = callback();
  if (!call_back) {
    logLine(Level::Error, event.site, "callback not set");
    response.set_s(kCallbackNotSet);
    return grpc::Status::OK;
  }
  logLine(Level::Info, event.site, "%s", event.begin);
  logLine(Level::Info, event.site, event.request, request.x());
  call_back(request.x(), event.state, data);
  response.set_s(0);
  logLine(Level::Info, event.site, "%s", event.done);
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
