// Plays one scenario and exits with 0 when its trace is the expected one.

#include <iostream>

#include "sim/Simulate.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: play_scenario FILE\n";
    return 2;
  }
  return valdrix::sim::simulate({.file = argv[1]}, std::cout, std::cerr, nullptr);
}
