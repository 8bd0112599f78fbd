// SPDX-License-Identifier: Apache-2.0
// Robot side or display as a gRPC server that receives and sends raw bytes: an answer may be
// anything, and only the library decodes.
#ifndef MURLINK_TESTS_RAW_PEER_H
#define MURLINK_TESTS_RAW_PEER_H

#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/server.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

std::string bytesOf(const grpc::ByteBuffer& buffer);
grpc::ByteBuffer bufferOf(const std::string& bytes);

// Listens from construction to destruction, and answers every unary call of any service alike.
class RawPeer : private grpc::CallbackGenericService {
 public:
  // A status or, when that is OK, the bytes of a message; without bytes it reads as success.
  struct Answer {
    grpc::StatusCode status = grpc::StatusCode::OK;
    std::string bytes;
  };
  struct Call {
    std::string rpc;    // the last part of its path
    std::string bytes;  // of the request
  };

  // Throws std::runtime_error when it cannot listen on `address`.
  explicit RawPeer(const std::string& address);
  ~RawPeer() override;
  RawPeer(const RawPeer&) = delete;
  RawPeer& operator=(const RawPeer&) = delete;

  void answerWith(Answer answer);
  // The calls since the last time.
  std::vector<Call> takeCalls();

 private:
  class UnaryCall;

  inline static std::mutex mutex_;  // static, so that no object must be read to lock it
  Answer answer_;
  std::vector<Call> calls_;
  std::unique_ptr<grpc::Server> server_;

  grpc::ServerGenericBidiReactor* CreateReactor(
      grpc::GenericCallbackServerContext* context) override;
};

#endif
