// SPDX-License-Identifier: Apache-2.0
#include "Attacks.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "FrameMutator.h"
#include "LargePress.h"
#include "support/Http2Frames.h"
#include "support/RawConnection.h"

namespace {

using http2::bytes;
using http2::Frame;

constexpr int kNoButton = 5;  // the id in hostile presses
constexpr int kHeldAtOnce = 1000;

RawConnection connected() {
  return {MURLINK_DISPLAY_HOST, 26711};
}

// One connection, on which everything is said at once.
void say(const std::string& text) {
  RawConnection connection = connected();
  connection.send(text);
  EXPECT_TRUE(connection.end()) << "the server keeps a connection that its client has ended";
}

void hold(int connections, const std::string& text) {
  for (int done = 0; done < connections; done += kHeldAtOnce) {
    for (RawConnection& connection : opened(kHeldAtOnce, text)) {
      EXPECT_TRUE(connection.end());
    }
  }
}

// What `one` makes for streams 1, 3, 5 and so on, `streams` to a connection.
template <typename One>
void onManyStreams(int times, int streams, One one) {
  for (int done = 0; done < times; done += streams) {
    RawConnection connection = connected();
    connection.send(http2::greeting());
    for (int i = 0; i < streams; ++i) {
      connection.send(one(static_cast<std::uint32_t>(2 * i + 1)));
    }
    EXPECT_TRUE(connection.end());
  }
}

}  // namespace

std::vector<RawConnection> opened(int connections, const std::string& text) {
  std::vector<RawConnection> all;
  for (int i = 0; i < connections; ++i) {
    all.push_back(connected());
    all.back().send(text);
  }
  return all;
}

void holdIdleConnections(int times) {
  hold(times, "");
}

void sendHalfPrefaces(int times) {
  hold(times, http2::kPreface.substr(0, http2::kPreface.size() / 2));
}

void sendRandomBytes(int times) {
  std::minstd_rand random(1);
  for (int i = 0; i < times; ++i) {
    std::string noise = i % 2 == 0 ? "" : http2::greeting();
    for (std::size_t left = random() % 4096; left > 0; --left) {
      noise.push_back(static_cast<char>(random()));
    }
    say(noise);
  }
}

void sendMutatedFrames(int times) {
  constexpr int kFramesToConnection = 25;
  FrameMutator mutator(1);
  for (int done = 0; done < times; done += kFramesToConnection) {
    say(mutator.conversation(kFramesToConnection));
  }
}

void sendHttp1Requests(int times) {
  for (int i = 0; i < times; ++i) {
    say("POST /zet.protobuf.app.Quarlo_RB_GRPC/service_On HTTP/1.1\r\nHost: robot\r\n"
        "Upgrade: h2c\r\nContent-Length: 100000\r\n\r\n");
  }
}

void callUnknownMethods(int times) {
  onManyStreams(times, 100, [](std::uint32_t stream) {
    return bytes(http2::call("method" + std::to_string(stream), stream, ""));
  });
}

// One byte more than gRPC takes unless told otherwise.
void sendLargeMessages(int times) {
  for (int i = 0; i < times; ++i) {
    EXPECT_EQ(pressOfSize((std::size_t{4} << 20) + 1), grpc::StatusCode::RESOURCE_EXHAUSTED);
  }
}

// Messages of 4 GiB, of which the first 32 KiB come, on 20 streams of each connection.
void announceLargeMessages(int times) {
  onManyStreams(times, 20, [](std::uint32_t stream) {
    const std::string start = '\0' + std::string(4, '\xff') + std::string(16000, 'x');
    return bytes({http2::call("service_On", stream, "")[0],
                  {http2::kData, http2::kNone, stream, start},
                  {http2::kData, http2::kNone, stream, start}});
  });
}

void sendManyHeaders(int times) {
  http2::Headers headers = http2::callHeaders("service_On");
  for (int i = 0; i < 400; ++i) {
    headers.emplace_back("x-" + std::to_string(i), "something to be kept");
  }
  const std::string all = http2::block(headers);
  onManyStreams(times, 50, [&all](std::uint32_t stream) {
    return bytes({{http2::kHeaders, http2::kEndHeaders, stream, all},
                  {http2::kData, http2::kEndStream, stream, http2::message("")}});
  });
}

// A block of headers that never ends, 8 MiB of it, one CONTINUATION after the other.
void continueHeadersForever(int times) {
  const std::string more(16384, '\x82');  // :method GET, again and again
  for (int i = 0; i < times; ++i) {
    RawConnection connection = connected();
    connection.send(http2::greeting() + bytes(Frame{http2::kHeaders, http2::kNone, 1, more}));
    for (int frame = 0; frame < 512; ++frame) {
      connection.send(bytes(Frame{http2::kContinuation, http2::kNone, 1, more}));
    }
    EXPECT_TRUE(connection.end());
  }
}

void resetStreamsAtOnce(int times) {
  onManyStreams(times, 1000, [](std::uint32_t stream) {
    auto frames = http2::call("service_On", stream, http2::intMessage(kNoButton));
    frames.push_back({http2::kResetStream, http2::kNone, stream, bytes(8)});
    return bytes(frames);
  });
}

// Calls that begin and never say what they want.
void keepStreamsOpen(int times) {
  onManyStreams(times, 1000, [](std::uint32_t stream) {
    return bytes(http2::call("service_On", stream, "")[0]);
  });
}

// Frames that a server has to answer, on a connection whose client reads nothing.
void flood(int times) {
  const std::string both = bytes(Frame{http2::kPing, http2::kNone, 0, std::string(8, 'p')}) +
                           bytes(Frame{http2::kSettings, http2::kNone, 0, ""});
  constexpr int kToConnection = 10'000;
  for (int done = 0; done < times; done += kToConnection) {
    std::string all = http2::greeting();
    for (int i = 0; i < kToConnection; ++i) {
      all += both;
    }
    say(all);
  }
}
