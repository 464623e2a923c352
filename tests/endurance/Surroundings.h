// What lies around the program on its machine: plugins, settings, and pictures, good and broken.
#pragma once

#include "tests/endurance/Dice.h"

#include <string>
#include <vector>

namespace endurance
{

class Surroundings
{
public:
    /// Puts everything into the test's home. To be made before the program starts.
    explicit Surroundings(Dice& dice);

    /// The name of a picture in the root of the device, or of one that is not there; `good`: one
    /// that can be read.
    std::string AnyName(Dice& dice) const;
    std::string GoodName(Dice& dice) const { return dice.AnyOf(good); }
    /// A name to save under. No picture from before has it.
    static std::string NameToSave(Dice& dice);
    /// What saved files are called.
    static bool IsSaved(const std::string& name);

    /// Something happens to a plugin's library or to a picture; answers what.
    std::string Change(Dice& dice);
    /// All plugins are there and sound.
    void Restore();

private:
    struct Library {
        std::string kind;
        std::string name;
    };

    void PutPlugins();
    void PutPictures(Dice& dice);
    std::string Spoil(const Library& library, Dice& dice);

    std::vector<Library> libraries;
    std::vector<std::string> good;
    std::vector<std::string> broken;
};

/// The host path of a file in the root of the device.
std::string InRoot(const std::string& name);
/// What the program left in its folder for pictures that are paged out.
std::vector<std::string> PagingFiles();

} // namespace endurance
