// SPDX-License-Identifier: Apache-2.0
// The robot side and the display in this process, as gRPC servers that take and give bytes: a reply
// may be anything, and nothing but the library decodes. The simulator is too slow for this.
#ifndef MURLINK_FUZZ_PEERS_H
#define MURLINK_FUZZ_PEERS_H

#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/server.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

// How a peer answers: with the bytes of a reply when the status is OK, or else with the status.
struct Answer {
  grpc::StatusCode status = grpc::StatusCode::OK;
  std::string bytes;
};

// A call that reached a peer: the last part of its path, and the bytes of the request.
struct Call {
  std::string rpc;
  std::string bytes;
};

// One side, listening from construction to destruction. All calls get the latest answer.
class Peer : private grpc::CallbackGenericService {
 public:
  explicit Peer(const std::string& address);
  ~Peer() override;
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  void answersWith(Answer answer);
  // What has come since the last call of this function.
  std::vector<Call> takeCalls();

 private:
  class Exchange;

  std::mutex mutex_;
  Answer answer_;
  std::vector<Call> calls_;
  std::unique_ptr<grpc::Server> server_;

  grpc::ServerGenericBidiReactor* CreateReactor(
      grpc::GenericCallbackServerContext* context) override;
  Answer take(Call call);
};

std::string bytesOf(const grpc::ByteBuffer& buffer);
grpc::ByteBuffer bufferOf(const std::string& bytes);

#endif
