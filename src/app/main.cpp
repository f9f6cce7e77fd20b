#include "app/program.h"

int main(int argc, char** argv) {
  return tavek::runProgram(argc, argv);
}
