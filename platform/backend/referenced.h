// Objects that the plug-in knows by their address alone. A reference that outlives its object is ignored, never
// followed.
#pragma once

namespace quorvel::platform {

class Referenced {
  public:
    Referenced(const Referenced&) = delete;
    Referenced& operator=(const Referenced&) = delete;

  protected:
    Referenced();
    virtual ~Referenced();
    // References to the object are ignored from now on, though it lives on.
    void retire();
};

bool isLiving(const Referenced* object);

// The object itself, or null for a null reference and for one whose object is gone.
template <typename Object>
Object* living(Object* reference) {
    return reference != nullptr && isLiving(reference) ? reference : nullptr;
}

}  // namespace quorvel::platform
