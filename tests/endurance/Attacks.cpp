// SPDX-License-Identifier: Apache-2.0
#include "Attacks.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "FrameMutator.h"
#include "support/Http2Frames.h"
#include "support/LargePress.h"
#include "support/RawConnection.h"

namespace {

using http2::bytes;
using http2::Frame;

constexpr int kHostileId = 5;
constexpr int kOpenAtOnce = 1000;

RawConnection connected() {
  return {MURLINK_DISPLAY_HOST, 26711};
}

// Sends `bytes` on one connection.
void sendAll(const std::string& bytes) {
  RawConnection connection = connected();
  connection.send(bytes);
  EXPECT_TRUE(connection.end()) << "the server keeps a connection that its client has ended";
}

// Sends `bytes` on each of many connections, and closes them only then.
void sendOnMany(int connections, const std::string& bytes) {
  for (int done = 0; done < connections; done += kOpenAtOnce) {
    for (RawConnection& connection : opened(kOpenAtOnce, bytes)) {
      EXPECT_TRUE(connection.end());
    }
  }
}

// Sends what `bytes_for` returns for streams 1, 3, 5 and so on, `streams` on each connection.
template <typename BytesFor>
void onManyStreams(int times, int streams, BytesFor bytes_for) {
  for (int done = 0; done < times; done += streams) {
    RawConnection connection = connected();
    connection.send(http2::greeting());
    for (int i = 0; i < streams; ++i) {
      connection.send(bytes_for(static_cast<std::uint32_t>(2 * i + 1)));
    }
    EXPECT_TRUE(connection.end());
  }
}

}  // namespace

std::vector<RawConnection> opened(int connections, const std::string& bytes) {
  std::vector<RawConnection> all;
  for (int i = 0; i < connections; ++i) {
    all.push_back(connected());
    all.back().send(bytes);
  }
  return all;
}

void holdIdleConnections(int times) {
  sendOnMany(times, "");
}

void sendHalfPrefaces(int times) {
  sendOnMany(times, http2::kPreface.substr(0, http2::kPreface.size() / 2));
}

void sendRandomBytes(int times) {
  std::minstd_rand random(1);
  for (int i = 0; i < times; ++i) {
    std::string noise = i % 2 == 0 ? "" : http2::greeting();
    for (std::size_t left = random() % 4096; left > 0; --left) {
      noise.push_back(static_cast<char>(random()));
    }
    sendAll(noise);
  }
}

void sendMutatedFrames(int times) {
  constexpr int kFramesPerConnection = 25;
  FrameMutator mutator(1);
  for (int done = 0; done < times; done += kFramesPerConnection) {
    sendAll(mutator.conversation(kFramesPerConnection));
  }
}

void sendHttp1Requests(int times) {
  for (int i = 0; i < times; ++i) {
    sendAll(
        "POST /zet.protobuf.app.Quarlo_RB_GRPC/service_On HTTP/1.1\r\nHost: robot\r\n"
        "Upgrade: h2c\r\nContent-Length: 100000\r\n\r\n");
  }
}

void callUnknownMethods(int times) {
  onManyStreams(times, 100, [](std::uint32_t stream) {
    return bytes(http2::call("method" + std::to_string(stream), stream, ""));
  });
}

// One byte more than gRPC accepts by default.
void sendLargeMessages(int times) {
  for (int i = 0; i < times; ++i) {
    EXPECT_EQ(pressOfSize((std::size_t{4} << 20) + 1), grpc::StatusCode::RESOURCE_EXHAUSTED);
  }
}

// Each announces a message of 4 GiB and sends its first 32 KiB, on 20 streams per connection.
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
    headers.emplace_back("x-" + std::to_string(i), "a value that is kept");
  }
  const std::string all = http2::block(headers);
  onManyStreams(times, 50, [&all](std::uint32_t stream) {
    return bytes({{http2::kHeaders, http2::kEndHeaders, stream, all},
                  {http2::kData, http2::kEndStream, stream, http2::message("")}});
  });
}

// A header block of 8 MiB in CONTINUATION frames, never completed.
void continueHeadersForever(int times) {
  const std::string more(16384, '\x82');  // :method GET, repeated
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
    auto frames = http2::call("service_On", stream, http2::intMessage(kHostileId));
    frames.push_back({http2::kResetStream, http2::kNone, stream, bytes(8)});
    return bytes(frames);
  });
}

// Calls that send headers and no message.
void keepStreamsOpen(int times) {
  onManyStreams(times, 1000, [](std::uint32_t stream) {
    return bytes(http2::call("service_On", stream, "")[0]);
  });
}

// Frames that the server has to answer, while the client reads nothing.
void flood(int times) {
  const std::string both = bytes(Frame{http2::kPing, http2::kNone, 0, std::string(8, 'p')}) +
                           bytes(Frame{http2::kSettings, http2::kNone, 0, ""});
  constexpr int kPerConnection = 10'000;
  for (int done = 0; done < times; done += kPerConnection) {
    std::string all = http2::greeting();
    for (int i = 0; i < kPerConnection; ++i) {
      all += both;
    }
    sendAll(all);
  }
}
