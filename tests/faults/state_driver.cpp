// Performs one operation on a state directory: state_driver OPERATION ROOT [--marked]. Marked, the process stops
// itself before and after the operation, so that whoever traces it knows which system calls are the operation's.
// Prints "done", or the sentence that a user would read; then how many descriptors were left open.

#include "faults/Operation.h"
#include "model/MessageError.h"

#include <csignal>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <string>

namespace {

std::ptrdiff_t openDescriptors() {
    return std::distance(
        std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

} // namespace

int main(int count, char** arguments) {
    const bool isMarked = count == 4 && arguments[3] == std::string("--marked");
    if (count != 3 && !isMarked) {
        std::cerr << "Usage: state_driver OPERATION ROOT [--marked]\n";
        return 2;
    }
    const kestrin::Operation& operation = kestrin::operationNamed(arguments[1]);
    const std::filesystem::path root = arguments[2];
    const std::ptrdiff_t before = openDescriptors();
    std::string answer = "done";
    if (isMarked) std::raise(SIGSTOP);
    try {
        operation.perform(root);
    } catch (const kestrin::MessageError& error) {
        answer = "refused: " + error.message;
    }
    if (isMarked) std::raise(SIGSTOP);
    std::cout << answer << "\nleaked " << openDescriptors() - before << "\n";
}
