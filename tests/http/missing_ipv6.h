#pragma once

/// Lets new sockets fail as on a machine without IPv6.
namespace missing_ipv6 {

enum class Reason {
    None,      ///< IPv6 works as usual
    Protocol,  ///< the system has no IPv6
    Address,   ///< IPv6 is turned off, so that no address can be bound
};

/// Returns false if this system does not let the tests intercept calls.
bool simulate(Reason reason);

}  // namespace missing_ipv6
