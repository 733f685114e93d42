#include "Programm.h"

int main(int argc, char** argv) { return werkzeug::programm(argc, argv); }
