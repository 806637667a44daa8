#pragma once

namespace rolu {

// The options that every command takes.
struct CommonOptions {
  bool json = false;
  bool force = false;
  bool yes = false;
};

}  // namespace rolu
