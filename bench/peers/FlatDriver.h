#pragma once

#include <string>

/// The driver's operations as a program of standard strings would declare them. Like those of the
/// null driver they do nothing.
namespace Kest::Bench::FlatDriver {

int ifadd(char const* ifName, int destId, int shadowIntfId, int trafficClass,
          std::string const& devName, int fapNum, bool ctrl, bool hwLag, char const* macAddr);
int ifdel(char const* ifName);
int nativeVlan(char const* ifName, bool mode, unsigned short vlanId);

}  // namespace Kest::Bench::FlatDriver
