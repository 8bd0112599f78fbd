// SPDX-License-Identifier: Apache-2.0
// A gRPC server that answers every call of any service with the same bytes, whatever they mean.
#ifndef MURLINK_TESTS_RAW_PEER_H
#define MURLINK_TESTS_RAW_PEER_H

#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server.h>
#include <grpcpp/server_builder.h>

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>

class RawPeer : private grpc::CallbackGenericService {
 public:
  // Answers nothing at all at first, which reads as success. Throws std::runtime_error when it
  // cannot listen on `address`.
  explicit RawPeer(const std::string& address) {
    grpc::ServerBuilder builder;
    builder.AddListeningPort(address, grpc::InsecureServerCredentials());
    builder.RegisterCallbackGenericService(this);
    server_ = builder.BuildAndStart();
    if (server_ == nullptr) {
      throw std::runtime_error("cannot listen on " + address);
    }
  }

  void answer(const std::string& bytes) {
    const grpc::Slice slice(bytes);
    const std::lock_guard<std::mutex> lock(mutex_);
    answer_ = grpc::ByteBuffer(&slice, 1);
  }

 private:
  class Call : public grpc::ServerGenericBidiReactor {
   public:
    explicit Call(grpc::ByteBuffer answer) : answer_(std::move(answer)) {
      const std::lock_guard<std::mutex> lock(creation_);
      StartRead(&request_);
    }

    void OnReadDone(bool /*ok*/) override {
      comeAfterCreation();
      StartWriteAndFinish(&answer_, grpc::WriteOptions(), grpc::Status::OK);
    }
    void OnDone() override {
      comeAfterCreation();
      delete this;
    }

   private:
    grpc::ByteBuffer request_;
    grpc::ByteBuffer answer_;

    // What gRPC sees to, but a thread sanitizer does not see in gRPC.
    inline static std::mutex creation_;
    static void comeAfterCreation() { const std::lock_guard<std::mutex> lock(creation_); }
  };

  std::mutex mutex_;
  grpc::ByteBuffer answer_ = emptyAnswer();
  std::unique_ptr<grpc::Server> server_;

  static grpc::ByteBuffer emptyAnswer() {
    const grpc::Slice nothing("");
    return {&nothing, 1};
  }

  grpc::ServerGenericBidiReactor* CreateReactor(
      grpc::GenericCallbackServerContext* /*context*/) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    return new Call(answer_);
  }
};

#endif
