// A second process for the tests: log_writer FOLDER WORD LINES appends that many lines
// with that word to the daily log in FOLDER, with the machine's own clock. FOLDER may be
// "stdout".

#include <cstdio>
#include <cstdlib>
#include <string>

#include "Src/DailyLog.h"

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: log_writer FOLDER WORD LINES\n", stderr);
    return 2;
  }
  Vask::DailyLog log;
  if (!log.Open(argv[1])) return 1;
  const std::string line = argv[2] + std::string("\n");
  for (int i = std::atoi(argv[3]); i > 0; --i) log.Info(line.c_str());
  return 0;
}
