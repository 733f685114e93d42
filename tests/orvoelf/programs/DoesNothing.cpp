// A program, and no library.

int main() { return 0; }
