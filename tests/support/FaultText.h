#pragma once

#include <string>

/// What a call throws, in a form that a table can hold.
namespace NSTest {

/// The message of the `Fault` that `call` throws; "(nothing thrown)" when it returns. Anything else
/// that is thrown passes.
template <class Fault, class Call>
std::string FaultText(Call&& call) {
  try {
    call();
  } catch (const Fault& fault) {
    return fault.Message();
  }
  return "(nothing thrown)";
}

}  // namespace NSTest
