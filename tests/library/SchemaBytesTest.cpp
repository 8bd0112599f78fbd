// SPDX-License-Identifier: Apache-2.0
// The bytes of each message on the wire.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Quarlo_Platform.pb.h"
#include "Quarlo_TV_Server.pb.h"

namespace {

using zet::protobuf::app::Button;
using zet::protobuf::app::Buttons;

template <typename Message, typename Fill>
std::string bytesOf(Fill fill) {
  Message message;
  fill(message);
  return message.SerializeAsString();
}

std::string operator""_bytes(const char* text, std::size_t length) {
  return {text, length};
}

void setPoint(Point& point, float x, float y) {
  point.set_x(x);
  point.set_y(y);
}

TEST(MessageBytes, OfTheMessagesThatTheLibraryUsesAreFixed) {
  EXPECT_EQ(bytesOf<IntMessage>([](auto& m) { m.set_x(2); }), "\x08\x02"_bytes);
  EXPECT_EQ(bytesOf<IntMessage>([](auto& m) { m.set_x(-1); }),
            "\x08\xff\xff\xff\xff\xff\xff\xff\xff\xff\x01"_bytes);
  EXPECT_EQ(bytesOf<StatusResponse>([](auto& m) { m.set_s(3); }), "\x08\x03"_bytes);
  EXPECT_EQ(bytesOf<StringMessage>([](auto& m) { m.set_s("127.0.0.2:26711"); }),
            "\x0a\x0f"
            "127.0.0.2:26711"_bytes);
  EXPECT_EQ(bytesOf<Button>([](auto& m) {
              m.set_id(7);
              m.set_start(0.5F);
              m.set_ending(1.0F);
            }),
            "\x08\x07\x15\x00\x00\x00\x3f\x1d\x00\x00\x80\x3f"_bytes);
  EXPECT_EQ(bytesOf<Buttons>([](auto& m) {
              m.add_buttons()->set_id(1);
              m.add_buttons()->set_start(0.5F);
            }),
            "\x0a\x02\x08\x01\x0a\x05\x15\x00\x00\x00\x3f"_bytes);
}

TEST(MessageBytes, OfTheOtherMessagesAreFixed) {
  EXPECT_EQ(bytesOf<ActionRequest>([](auto& m) { m.set_a(true); }), "\x08\x01"_bytes);
  EXPECT_EQ(bytesOf<Point>([](auto& m) { setPoint(m, 1, 2); }),
            "\x0d\x00\x00\x80\x3f\x15\x00\x00\x00\x40"_bytes);
  EXPECT_EQ(bytesOf<Bbox>([](auto& m) {
              setPoint(*m.mutable_center(), 1, 0);
              setPoint(*m.mutable_shape(), 0, 2);
            }),
            "\x0a\x05\x0d\x00\x00\x80\x3f\x12\x05\x15\x00\x00\x00\x40"_bytes);
  EXPECT_EQ(bytesOf<Landmarks>([](auto& m) {
              setPoint(*m.add_landmarks(), 1, 0);
              setPoint(*m.add_landmarks(), 0, 0);
            }),
            "\x0a\x05\x0d\x00\x00\x80\x3f\x0a\x00"_bytes);
  EXPECT_EQ(bytesOf<FrameLandmarkData>([](auto& m) {
              m.set_time(1.0);
              m.mutable_bbox();
              m.set_isright(true);
              m.set_static_classification(5);
              m.set_hand_size(2.0F);
              m.mutable_normedldmks();
              m.mutable_projectedldmks();
            }),
            "\x09\x00\x00\x00\x00\x00\x00\xf0\x3f\x12\x00\x18\x01\x20\x05"
            "\x2d\x00\x00\x00\x40\x32\x00\x3a\x00"_bytes);
}

TEST(MessageBytes, DoNotIncludeDefaults) {
  EXPECT_EQ(bytesOf<StatusResponse>([](auto& m) { m.set_s(0); }), "");
  EXPECT_EQ(bytesOf<IntMessage>([](auto& m) { m.set_x(0); }), "");
  EXPECT_EQ(bytesOf<StringMessage>([](auto& m) { m.set_s(""); }), "");
  EXPECT_EQ(bytesOf<Button>([](auto& m) { m.set_start(0); }), "");
  EXPECT_EQ(bytesOf<Buttons>([](auto&) {}), "");
}

TEST(MessageBytes, ReadAsSuccessWhenThereAreNone) {
  StatusResponse response;
  response.set_s(7);

  EXPECT_TRUE(response.ParseFromString(""));
  EXPECT_EQ(response.s(), 0);
}

TEST(MessageBytes, OfInvalidUtf8AreWrittenWithAWarning) {
  StringMessage message;
  message.set_s("\xff");

  ::testing::internal::CaptureStderr();
  const std::string bytes = message.SerializeAsString();
  const std::string warning = ::testing::internal::GetCapturedStderr();

  EXPECT_EQ(bytes, "\x0a\x01\xff");
  EXPECT_THAT(warning, ::testing::HasSubstr("StringMessage.s"));
}

}  // namespace
