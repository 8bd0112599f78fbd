// SPDX-License-Identifier: Apache-2.0
// The callback server, through which the recogniser reports presses, and the channel to the display,
// which gets the server's address and the button layouts.
#ifndef MURLINK_GRPC_SERVER_H
#define MURLINK_GRPC_SERVER_H

#include <grpcpp/channel.h>
#include <grpcpp/server.h>

#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Quarlo_RB_Server.grpc.pb.h"
#include "Quarlo_TV_Server.grpc.pb.h"
#include "RunningCallbacks.h"
#include "murlink_robot.h"

// The display side, as host:port.
extern const std::string& tv_server_address;

// gRPC calls service_On and service_Off on its own threads, several at once. Everything else is for
// one thread at a time.
class FootTouch_Server : public zet::protobuf::app::Quarlo_RB_GRPC::Service {
 public:
  using ButtonCallback = std::function<void(int, int, void*)>;

  // The process's only server, created on first use.
  static FootTouch_Server* getInstance();
  // Deletes it. Only when `shutdown_first` is 1, terminate_server() runs before.
  static void releaseInstance(int shutdown_first);

  FootTouch_Server();
  ~FootTouch_Server() override;

  // A foot touches or leaves the button `x`. Calls the callback and, when that has returned, answers
  // 0; answers 4 when no callback is set. The status is always OK.
  grpc::Status service_On(grpc::ServerContext* context, const IntMessage* request,
                          StatusResponse* response) override;
  grpc::Status service_Off(grpc::ServerContext* context, const IntMessage* request,
                           StatusResponse* response) override;

  // Stores the address and sends it to the display. 0, or 1 when the display does not acknowledge it.
  int initialize(std::string listening_address);
  bool same_address(std::string other);
  std::string get_address();

  // Starts a thread that builds the server and listens. Failures are only logged.
  void run_server();
  // Stops listening, waits without limit for running callbacks, and joins the thread.
  void terminate_server();

  void set_button_cb(ButtonCallback callback, void* data);

  // Sends the address to the display. Blocks for 1 s at most.
  bool sync_address();
  // Sends a layout to the display. Blocks for 2 s at most. 0 when the display accepted it, 4 when the
  // call failed, 6 when the display answered with a failure.
  int send_button_info(std::vector<button>& buttons);

  static FootTouch_Server* _instance;

 private:
  struct Event;
  // What a press calls. It shares the function object: replacing the callback does not destroy it
  // while it runs.
  struct [[gnu::visibility("hidden")]] Callback {
    std::shared_ptr<ButtonCallback> owner;
    ButtonCallback function;
    void* data;
  };

  std::string server_address;
  std::unique_ptr<std::thread> server_thread;
  std::unique_ptr<grpc::Server> server;
  std::shared_ptr<ButtonCallback> callback_owner;  // owns the function object that was set
  ButtonCallback button_cb;                        // refers to it; empty when there is none
  std::shared_ptr<grpc::Channel> tv_channel;
  std::unique_ptr<zet::protobuf::app::Quarlo_TV_GRPC::Stub> tv_stub;
  void* user_data = nullptr;

  // Guards callback_owner, button_cb and user_data; never held while a callback runs.
  std::mutex callback_mutex;
  std::future<void> server_settled;  // `server` is set, or stays null
  std::future<void> server_left;     // the server thread no longer uses `server`

  murlink::RunningCallbacks callbacks;

  [[gnu::visibility("hidden")]] void serve(std::promise<void> settled, std::promise<void> left);
  [[gnu::visibility("hidden")]] Callback currentCallback();
  [[gnu::visibility("hidden")]] grpc::Status report(const Event& event, const IntMessage& request,
                                                    StatusResponse& response);
};

#endif
