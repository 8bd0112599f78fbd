// SPDX-License-Identifier: Apache-2.0
// A connection that a proxy has accepted. For the proxy's thread alone.
#ifndef MURLINK_SIMULATOR_PROXY_CONNECTION_H
#define MURLINK_SIMULATOR_PROXY_CONNECTION_H

#include <poll.h>

#include <memory>

#include "Fault.h"
#include "Flow.h"
#include "Socket.h"

namespace simulator {

class ProxyConnection {
 public:
  using Time = Flow::Time;

  // What to poll for: an entry for the client, and one for the peer.
  struct Watch {
    pollfd client;
    pollfd peer;
  };

  virtual ~ProxyConnection() = default;

  virtual Watch watch() const = 0;
  // When step() has something to do although nothing was polled.
  virtual Time due() const = 0;
  // Goes on after poll(). False when the connection is over.
  virtual bool step(const Watch& polled, Time now) = 0;

  // The socket of the client, for who goes on in this one's place.
  Socket takeClient() { return std::move(client_); }
  void reset() { client_.reset(); }

 protected:
  explicit ProxyConnection(Socket client) : client_(std::move(client)) {}

  Socket client_;
};

// Passes on what client and peer say to each other, but for the fault.
class Relay : public ProxyConnection {
 public:
  Relay(Socket client, Socket peer, const Fault& fault);

  void adopt(const Fault& fault);
  Watch watch() const override;
  Time due() const override;
  bool step(const Watch& polled, Time now) override;

 private:
  Socket peer_;
  Flow to_peer_;
  Flow to_client_;
  Fault fault_;
  bool connected_ = false;

  bool isGivenUp() const;
  bool passesBothEnds() const { return fault_.kind == Fault::None || fault_.kind == Fault::Delay; }
};

// Answers in the peer's place, with what nobody wants to hear.
class Impostor : public ProxyConnection {
 public:
  Impostor(Socket client, const Fault& fault);

  Watch watch() const override;
  Time due() const override;
  bool step(const Watch& polled, Time now) override;

 private:
  Fault fault_;
  std::string pending_;
  Time next_{};

  bool hear();
};

}  // namespace simulator

#endif
