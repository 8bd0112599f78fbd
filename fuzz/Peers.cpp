// SPDX-License-Identifier: Apache-2.0
#include "Peers.h"

#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server_builder.h>
#include <grpcpp/support/byte_buffer.h>

#include <stdexcept>
#include <utility>

std::string bytesOf(const grpc::ByteBuffer& buffer) {
  std::vector<grpc::Slice> slices;
  std::string bytes;
  if (buffer.Dump(&slices).ok()) {
    for (const grpc::Slice& slice : slices) {
      bytes.append(reinterpret_cast<const char*>(slice.begin()), slice.size());
    }
  }
  return bytes;
}

grpc::ByteBuffer bufferOf(const std::string& bytes) {
  const grpc::Slice slice(bytes);
  return {&slice, 1};
}

// One unary call; gRPC calls it from its own threads, and deletes nothing.
class Peer::Exchange : public grpc::ServerGenericBidiReactor {
 public:
  Exchange(Peer& peer, const std::string& path)
      : peer_(peer), rpc_(path.substr(path.rfind('/') + 1)) {
    StartRead(&request_);
  }

  void OnReadDone(bool ok) override {
    if (!ok) {
      Finish({grpc::StatusCode::CANCELLED, "no request"});
      return;
    }
    const Answer answer = peer_.take({rpc_, bytesOf(request_)});
    if (answer.status != grpc::StatusCode::OK) {
      Finish({answer.status, "as told"});
      return;
    }
    reply_ = bufferOf(answer.bytes);
    StartWriteAndFinish(&reply_, {}, grpc::Status::OK);
  }

  void OnDone() override { delete this; }

 private:
  Peer& peer_;
  const std::string rpc_;
  grpc::ByteBuffer request_;
  grpc::ByteBuffer reply_;
};

Peer::Peer(const std::string& address) {
  grpc::ServerBuilder builder;
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  builder.AddListeningPort(address, grpc::InsecureServerCredentials());
  builder.RegisterCallbackGenericService(this);
  server_ = builder.BuildAndStart();
  if (server_ == nullptr) {
    throw std::runtime_error("cannot listen on " + address);
  }
}

Peer::~Peer() {
  server_->Shutdown();
}

void Peer::answersWith(Answer answer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  answer_ = std::move(answer);
}

std::vector<Call> Peer::takeCalls() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(calls_, {});
}

grpc::ServerGenericBidiReactor* Peer::CreateReactor(grpc::GenericCallbackServerContext* context) {
  return new Exchange(*this, context->method());
}

Answer Peer::take(Call call) {
  const std::lock_guard<std::mutex> lock(mutex_);
  calls_.push_back(std::move(call));
  return answer_;
}
