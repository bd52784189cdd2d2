#include "check/Steps.h"

namespace Check {

std::string StepTable() {
  std::string table = "| step | look at | must be | if not |\n|---|---|---|---|\n";
  std::size_t number = 0;
  for (const Step& step : kSteps) {
    table += "| " + std::to_string(++number) + ' ' + step.name + " | " + step.lookAt + " | " +
             step.mustBe + " | " + step.ifNot + " |\n";
  }
  return table;
}

}  // namespace Check
