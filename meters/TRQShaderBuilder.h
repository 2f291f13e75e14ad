#pragma once

#include <map>
#include <memory>

// Programs by key, each compiled the first time its key is drawn and kept until the
// context goes. A key whose build failed stays failed, so a broken driver is asked
// once, not every frame.
template<typename Program>
class TRQShaderBuilder
{
public:
    // Null when the program failed to build. GL thread, context current.
    template<typename Context>
    Program* get (Context& context, int key)
    {
        auto found = programs.find (key);
        if (found == programs.end())
        {
            auto program = std::make_unique<Program> (context, key);
            if (!program->isValid())
                program.reset();
            found = programs.emplace (key, std::move (program)).first;
        }
        return found->second.get();
    }

    void clear() { programs.clear(); }
    size_t size() const { return programs.size(); }

private:
    std::map<int, std::unique_ptr<Program>> programs;
};
