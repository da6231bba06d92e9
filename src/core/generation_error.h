// GenerationError: the one error that crosses the engine's interface.
//
// Generation stops on a script error or a cancel by raising this, with
// number -1 and ProjErr as its description; it travels to the generation
// driver, which reports it to the host. Nothing else throws across the
// public interface.
#pragma once

#include <stdexcept>
#include <string>

namespace bw {

class GenerationError : public std::runtime_error {
 public:
  explicit GenerationError(const std::string& description) : std::runtime_error(description) {}
  int number() const { return -1; }
};

// Closes the status display and raises GenerationError with ProjErr.
[[noreturn]] void RaiseGenerationError();

// The user stopped the run: ProjErr becomes "Generation cancelled by
// user!", then as RaiseGenerationError.
[[noreturn]] void CancelGeneration();

}  // namespace bw
