// SPDX-License-Identifier: Apache-2.0
// The library's own server, through which the recogniser reports presses, and the channel to the
// display, which is told where that server listens and which buttons there are.
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
#include "RunningReports.h"
#include "murlink_robot.h"

// The display side, as host:port. Never destroyed: another thread may initialise foot touch while
// the process ends.
extern const std::string& tv_server_address;

// service_On and service_Off run on gRPC's threads, several at once; everything else is for one
// thread at a time.
class FootTouch_Server : public zet::protobuf::app::Quarlo_RB_GRPC::Service {
 public:
  using ButtonCallback = std::function<void(int, int, void*)>;

  // The process's only server, made on first use.
  static FootTouch_Server* getInstance();
  // Deletes it; when `shutdown_first` is 1, and only then, after terminate_server().
  static void releaseInstance(int shutdown_first);

  FootTouch_Server();
  ~FootTouch_Server() override;

  // A foot touches the button `x`, or leaves it. Calls the callback and answers 0 once it has
  // returned, or 4 when none is set; the status is always OK.
  grpc::Status service_On(grpc::ServerContext* context, const IntMessage* request,
                          StatusResponse* response) override;
  grpc::Status service_Off(grpc::ServerContext* context, const IntMessage* request,
                           StatusResponse* response) override;

  // Keeps the address and tells the display. 0, or 1 when the display does not acknowledge it.
  int initialize(std::string listening_address);
  bool same_address(std::string other) const;
  std::string get_address() const;

  // Starts to listen on a thread of its own. How that went is only logged.
  void run_server();
  // Stops listening, waits without limit for running callbacks, and joins the thread.
  void terminate_server();

  void set_button_cb(ButtonCallback callback, void* data);

  // Tell the display; block for 1 s and 2 s at most.
  bool sync_address();
  // 0 done, 4 the call failed, 6 the display answered with a failure.
  int send_button_info(std::vector<button>& buttons);

  static FootTouch_Server* _instance;

 private:
  struct Event;

  std::string server_address;
  std::unique_ptr<std::thread> server_thread;
  std::unique_ptr<grpc::Server> server;
  ButtonCallback button_cb;
  std::shared_ptr<grpc::Channel> tv_channel;
  std::unique_ptr<zet::protobuf::app::Quarlo_TV_GRPC::Stub> tv_stub;
  void* user_data = nullptr;

  // Guards button_cb and user_data; never held while a callback runs.
  std::mutex callback_mutex;
  // What the server thread says: that `server` is set, or stays null; and that it no longer uses
  // it.
  std::future<void> server_settled;
  std::future<void> server_left;

  RunningReports reports;

  [[gnu::visibility("hidden")]] void serve(std::promise<void> settled, std::promise<void> left);
  [[gnu::visibility("hidden")]] std::pair<ButtonCallback, void*> callback();
  [[gnu::visibility("hidden")]] grpc::Status report(const Event& event, const IntMessage& request,
                                                    StatusResponse& response);
};

#endif
