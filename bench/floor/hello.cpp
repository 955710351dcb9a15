// The floor under every command that draws nothing: a C++ program that
// starts, prints one line through iostream and exits.

#include <iostream>

int main() { std::cout << "hello, world\n"; }
