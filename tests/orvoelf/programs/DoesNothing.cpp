// A program, not a library.

int main() { return 0; }
