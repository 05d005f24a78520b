// The yardstick of start-up time: the smallest C++ program that prints.
#include <iostream>

int main() {
  std::cout << "hello, world\n";
}
