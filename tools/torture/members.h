/*
 * Profiles: which members of what the device hands out a case judges. A reviewed file a module:
 *
 *     TC_GPIO_GetValue_{003,005} TC_GPIO_SetValue_006
 *         QLX_GPIOGetValue: judges level; ignores uReserved
 *         SectionFilter: judges data length(less) repeat; ignores event
 *
 * Cases of the same profile share their lines. `{003,005..007}` stands for the last parts of names,
 * `stDvbT.{eFecRate eBandWidth}` for members of one record. A member is judged when the verdict
 * turns with half of its bits inverted; `(zero)`: only when it is 0. A handle, length or count is
 * judged when the verdict turns both when it is 0 and when it is one less; else `(none)` or
 * `(less)`. `repeat` is a callback that comes twice.
 */
#ifndef TOOLS_TORTURE_MEMBERS_H
#define TOOLS_TORTURE_MEMBERS_H

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace torture {

/** Function or callback, and what a case makes of it: "judges level; ignores uReserved". */
using Profile = std::vector<std::pair<std::string, std::string>>;

/** Profiles of cases, in the order of their module. */
using Profiles = std::vector<std::pair<std::string, Profile>>;

/** Gathers what comes of the steps of one case. */
class ProfileMaker {
 public:
    /** Takes a step, as the report names it; false when it is none of members.
     *  @param noticed  whether the verdict turned, or the run did not come to one */
    bool take(const std::string& step, bool noticed);

    Profile profile() const;
    /** Of all members, those that are judged. */
    unsigned judged() const;
    unsigned members() const;

 private:
    struct Member {
        std::string name;
        /** The kinds of steps that were noticed. */
        std::vector<std::string> noticed;
        std::string text() const;
    };
    std::vector<std::pair<std::string, std::vector<Member>>> functions_;
};

/** The members of a function that a profile says are judged. */
std::vector<std::string> judgedMembers(const Profile& profile, const std::string& function);

/** Reads the profiles of a module; none when there is no such file. False with a message on
 * standard error when a line cannot be read. */
bool readProfiles(const std::filesystem::path& path, Profiles* profiles);

/** Throws std::filesystem::filesystem_error when the file cannot be written. */
void writeProfiles(const std::filesystem::path& path, const Profiles& profiles);

}  // namespace torture

#endif
