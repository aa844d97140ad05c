#pragma once

namespace varno {

/// The program, from its start to its exit status.
class VarnoApp {
public:
    static int run(int argc, char** argv);
};

} // namespace varno
