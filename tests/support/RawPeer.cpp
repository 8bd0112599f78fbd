// SPDX-License-Identifier: Apache-2.0
#include "RawPeer.h"

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

// gRPC runs the steps of a call one after the other, on several threads. ThreadSanitizer does not
// see that order inside gRPC, so each step locks the mutex before it reads a member.
class RawPeer::UnaryCall : public grpc::ServerGenericBidiReactor {
 public:
  UnaryCall(RawPeer& peer, const std::string& path)
      : peer_(peer), rpc_(path.substr(path.rfind('/') + 1)) {
    StartRead(&request_);
  }

  void OnReadDone(bool ok) override {
    const grpc::Status status = ok ? take() : grpc::Status::CANCELLED;
    if (status.ok()) {
      StartWriteAndFinish(&reply_, {}, status);
    } else {
      Finish(status);
    }
  }

  void OnDone() override {
    { const std::lock_guard<std::mutex> lock(mutex_); }
    delete this;
  }

 private:
  RawPeer& peer_;
  const std::string rpc_;
  grpc::ByteBuffer request_;
  grpc::ByteBuffer reply_;

  grpc::Status take() {
    const std::lock_guard<std::mutex> lock(mutex_);
    peer_.calls_.push_back({rpc_, bytesOf(request_)});
    reply_ = bufferOf(peer_.answer_.bytes);
    return {peer_.answer_.status, ""};
  }
};

RawPeer::RawPeer(const std::string& address) {
  const std::lock_guard<std::mutex> before_every_call(mutex_);
  grpc::ServerBuilder builder;
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  builder.AddListeningPort(address, grpc::InsecureServerCredentials());
  builder.RegisterCallbackGenericService(this);
  server_ = builder.BuildAndStart();
  if (server_ == nullptr) {
    throw std::runtime_error("cannot listen on " + address);
  }
}

RawPeer::~RawPeer() {
  server_->Shutdown();
  const std::lock_guard<std::mutex> after_every_call(mutex_);
}

void RawPeer::answerWith(Answer answer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  answer_ = std::move(answer);
}

std::vector<RawPeer::Call> RawPeer::takeCalls() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(calls_, {});
}

grpc::ServerGenericBidiReactor* RawPeer::CreateReactor(
    grpc::GenericCallbackServerContext* context) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return new UnaryCall(*this, context->method());
}
