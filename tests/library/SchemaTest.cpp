// SPDX-License-Identifier: Apache-2.0
// The schemas are shared with other programs, so every name, number, type and method path is fixed.
// The bytes of the messages are covered by SchemaBytesTest.
#include <gmock/gmock.h>
#include <google/protobuf/descriptor.h>
#include <grpcpp/create_channel.h>
#include <grpcpp/generic/generic_stub.h>
#include <grpcpp/server_builder.h>
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <mutex>
#include <vector>

#include "Quarlo_RB_Server.grpc.pb.h"
#include "Quarlo_TV_Server.grpc.pb.h"
#include "support/RawPeer.h"
#include "support/SimulatorProcess.h"
#include "support/VirtualSlot.h"

namespace {

using google::protobuf::DescriptorPool;
using google::protobuf::FieldDescriptor;
using google::protobuf::FileDescriptor;
using zet::protobuf::app::Quarlo_RB_GRPC;
using zet::protobuf::app::Quarlo_TV_GRPC;

// ---- Descriptors

std::string typeOf(const FieldDescriptor& field) {
  return field.message_type() == nullptr ? std::string(field.type_name())
                                         : "." + std::string(field.message_type()->full_name());
}

std::string textOf(const FieldDescriptor& field) {
  return std::to_string(field.number()) + (field.is_repeated() ? " repeated " : " ") +
         typeOf(field) + " " + std::string(field.name()) +
         (field.options().ByteSizeLong() > 0 ? " (options)" : "") +
         (field.has_presence() && field.message_type() == nullptr ? " (explicit presence)" : "");
}

std::vector<std::string> textOf(const FileDescriptor& file) {
  std::vector<std::string> lines{"package " + std::string(file.package())};
  if (file.enum_type_count() > 0 || file.extension_count() > 0 ||
      file.options().ByteSizeLong() > 0) {
    lines.emplace_back("something else");
  }
  for (int i = 0; i < file.dependency_count(); ++i) {
    lines.push_back("import " + std::string(file.dependency(i)->name()));
  }
  for (int i = 0; i < file.message_type_count(); ++i) {
    const auto& message = *file.message_type(i);
    lines.push_back("message " + std::string(message.full_name()));
    if (message.nested_type_count() > 0 || message.enum_type_count() > 0 ||
        message.oneof_decl_count() > 0 || message.options().ByteSizeLong() > 0) {
      lines.emplace_back("something else");
    }
    for (int j = 0; j < message.field_count(); ++j) {
      lines.push_back(textOf(*message.field(j)));
    }
  }
  for (int i = 0; i < file.service_count(); ++i) {
    const auto& service = *file.service(i);
    lines.push_back("service " + std::string(service.full_name()));
    for (int j = 0; j < service.method_count(); ++j) {
      const auto& method = *service.method(j);
      lines.push_back(std::string(method.name()) + (method.client_streaming() ? " stream" : "") +
                      " ." + std::string(method.input_type()->full_name()) +
                      (method.server_streaming() ? " stream" : "") + " ." +
                      std::string(method.output_type()->full_name()));
    }
  }
  return lines;
}

// As it was registered at load: no function has to be called first.
const FileDescriptor& registered(const char* name) {
  const FileDescriptor* const file = DescriptorPool::generated_pool()->FindFileByName(name);
  if (file == nullptr) {
    throw std::runtime_error(std::string(name) + " is not registered");
  }
  return *file;
}

TEST(PlatformSchema, HasItsMessagesInOrder) {
  EXPECT_THAT(textOf(registered("Quarlo_Platform.proto")),
              ::testing::ElementsAre(
                  "package ",                                                              //
                  "message ActionRequest", "1 bool a",                                     //
                  "message StatusResponse", "1 int32 s",                                   //
                  "message IntMessage", "1 int32 x",                                       //
                  "message Point", "1 float x", "2 float y",                               //
                  "message Bbox", "1 .Point center", "2 .Point shape",                     //
                  "message Landmarks", "1 repeated .Point Landmarks",                      //
                  "message StringMessage", "1 string s",                                   //
                  "message FrameLandmarkData", "1 double time", "2 .Bbox bbox",            //
                  "3 bool isRight", "4 int32 static_classification", "5 float hand_size",  //
                  "6 .Landmarks normedLDMKS", "7 .Landmarks projectedLDMKS"));
}

TEST(RobotSchema, HasItsRpcsInOrder) {
  EXPECT_THAT(textOf(registered("Quarlo_RB_Server.proto")),
              ::testing::ElementsAre("package zet.protobuf.app", "import Quarlo_Platform.proto",
                                     "service zet.protobuf.app.Quarlo_RB_GRPC",
                                     "service_On .IntMessage .StatusResponse",
                                     "service_Off .IntMessage .StatusResponse",
                                     "program_run .IntMessage .StatusResponse",
                                     "program_stop .IntMessage .StatusResponse"));
}

TEST(DisplaySchema, HasItsMessagesAndRpcsInOrder) {
  EXPECT_THAT(textOf(registered("Quarlo_TV_Server.proto")),
              ::testing::ElementsAre(
                  "package zet.protobuf.app", "import Quarlo_Platform.proto",
                  "message zet.protobuf.app.Button", "1 int32 id", "2 float start",
                  "3 float ending",  //
                  "message zet.protobuf.app.Buttons", "1 repeated .zet.protobuf.app.Button buttons",
                  "service zet.protobuf.app.Quarlo_TV_GRPC",
                  "sendFrameData .FrameLandmarkData .StatusResponse",
                  "sendFootTouchPoint .Point .StatusResponse",
                  "setFootTouchAPIServerAddress .StringMessage .StatusResponse",
                  "setButtons .zet.protobuf.app.Buttons .StatusResponse"));
}

// ---- Services

TEST(RobotService, AnswersUnimplementedForWhatIsNotOverridden) {
  Quarlo_RB_GRPC::Service service;
  StatusResponse response;
  response.set_s(42);
  for (const auto handler :
       {&Quarlo_RB_GRPC::Service::service_On, &Quarlo_RB_GRPC::Service::service_Off,
        &Quarlo_RB_GRPC::Service::program_run, &Quarlo_RB_GRPC::Service::program_stop}) {
    const grpc::Status status = (service.*handler)(nullptr, nullptr, &response);

    EXPECT_EQ(status.error_code(), grpc::StatusCode::UNIMPLEMENTED);
    EXPECT_EQ(status.error_message(), "");
    EXPECT_EQ(response.s(), 42);
  }
}

TEST(RobotService, HasItsHandlersInTheOrderOfTheSchema) {
  using Service = Quarlo_RB_GRPC::Service;
  const auto first = virtualSlot(&Service::service_On);

  EXPECT_EQ(virtualSlot(&Service::service_Off), first + 1);
  EXPECT_EQ(virtualSlot(&Service::program_run), first + 2);
  EXPECT_EQ(virtualSlot(&Service::program_stop), first + 3);
}

// Sends bytes to a method path without any generated code.
std::string rawCall(const std::string& path, const std::string& bytes) {
  grpc::GenericStub stub(
      grpc::CreateChannel(MURLINK_ROBOT_HOST ":26710", grpc::InsecureChannelCredentials()));
  grpc::ClientContext context;
  context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(5));
  const grpc::ByteBuffer request = bufferOf(bytes);
  grpc::ByteBuffer response;
  std::promise<grpc::Status> done;
  stub.UnaryCall(&context, path, {}, &request, &response,
                 [&done](grpc::Status status) { done.set_value(std::move(status)); });
  const grpc::Status status = done.get_future().get();
  if (!status.ok()) {
    throw std::runtime_error(path + ": " + status.error_message());
  }
  return bytesOf(response);
}

TEST(RobotService, AnswersSuccessWithAnEmptyBody) {
  SimulatorProcess robot;
  robot.command("when any any answer 0");

  EXPECT_EQ(rawCall("/zet.protobuf.app.Quarlo_RB_GRPC/service_On", ""), "");
}

// ---- Method paths

// A server of both services, which implements no method and keeps the path of each call.
class MethodPaths : public ::testing::Test {
 protected:
  MethodPaths() {
    std::vector<std::unique_ptr<grpc::experimental::ServerInterceptorFactoryInterface>> recorders;
    recorders.push_back(std::make_unique<Recorder>(*this));
    grpc::ServerBuilder builder;
    builder.RegisterService(&robot_);
    builder.RegisterService(&display_);
    builder.experimental().SetInterceptorCreators(std::move(recorders));
    server_ = builder.BuildAndStart();
  }

  // The path of a call of `rpc`.
  template <typename Stub, typename Request>
  std::string pathOf(grpc::Status (Stub::*rpc)(grpc::ClientContext*, const Request&,
                                               StatusResponse*)) {
    grpc::ClientContext context;
    StatusResponse response;
    Stub stub(server_->InProcessChannel({}));
    EXPECT_EQ((stub.*rpc)(&context, Request(), &response).error_code(),
              grpc::StatusCode::UNIMPLEMENTED);
    const std::lock_guard<std::mutex> lock(mutex_);
    return path_;
  }

 private:
  struct Recorder : public grpc::experimental::ServerInterceptorFactoryInterface {
    explicit Recorder(MethodPaths& owner) : test(owner) {}
    grpc::experimental::Interceptor* CreateServerInterceptor(
        grpc::experimental::ServerRpcInfo* call) override {
      const std::lock_guard<std::mutex> lock(test.mutex_);
      test.path_ = call->method();
      return nullptr;
    }
    MethodPaths& test;
  };

  std::mutex mutex_;
  std::string path_;
  Quarlo_RB_GRPC::Service robot_;
  Quarlo_TV_GRPC::Service display_;
  std::unique_ptr<grpc::Server> server_;
};

TEST_F(MethodPaths, OfTheRobotServiceAreFixed) {
  using Stub = Quarlo_RB_GRPC::Stub;

  EXPECT_EQ(pathOf(&Stub::service_On), "/zet.protobuf.app.Quarlo_RB_GRPC/service_On");
  EXPECT_EQ(pathOf(&Stub::service_Off), "/zet.protobuf.app.Quarlo_RB_GRPC/service_Off");
  EXPECT_EQ(pathOf(&Stub::program_run), "/zet.protobuf.app.Quarlo_RB_GRPC/program_run");
  EXPECT_EQ(pathOf(&Stub::program_stop), "/zet.protobuf.app.Quarlo_RB_GRPC/program_stop");
}

TEST_F(MethodPaths, OfTheDisplayServiceAreFixed) {
  using Stub = Quarlo_TV_GRPC::Stub;

  EXPECT_EQ(pathOf(&Stub::sendFrameData), "/zet.protobuf.app.Quarlo_TV_GRPC/sendFrameData");
  EXPECT_EQ(pathOf(&Stub::sendFootTouchPoint),
            "/zet.protobuf.app.Quarlo_TV_GRPC/sendFootTouchPoint");
  EXPECT_EQ(pathOf(&Stub::setFootTouchAPIServerAddress),
            "/zet.protobuf.app.Quarlo_TV_GRPC/setFootTouchAPIServerAddress");
  EXPECT_EQ(pathOf(&Stub::setButtons), "/zet.protobuf.app.Quarlo_TV_GRPC/setButtons");
}

}  // namespace
