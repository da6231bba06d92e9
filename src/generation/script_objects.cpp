#include "generation/script_objects.h"

#include "extensions/extensions.h"
#include "language/phrase_store.h"
#include "persistence/master_details.h"
#include "persistence/menus.h"
#include "template/custom_scripts.h"

namespace bw {

void BindProjectObjects(AGScript& host, Project& project, ProjectTemplate& projectTemplate) {
  host.Initialize(refTo(&project), project.DB(), projectTemplate.controls(), refTo(&Language()),
                  refTo(&MasterDetails()), refTo(&CustomScripts()), project.attr("ProgramLanguage"),
                  refTo(&Extensions()), refTo(&Menus()));
}

}  // namespace bw
