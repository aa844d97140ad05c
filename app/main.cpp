#include "app/VarnoApp.h"

int main(int argc, char** argv)
{
    return varno::VarnoApp::run(argc, argv);
}
