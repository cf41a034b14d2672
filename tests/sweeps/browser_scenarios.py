"""What the window is disturbed at. Its libraries are real databases, because it reads them."""
import json
import os
import sqlite3

from scenarios import ManufacturerRefresh, Scenario, Update, Window, archive, noise, write

TABLES = """
CREATE TABLE catalog (key TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE folder (id INTEGER PRIMARY KEY, parent INTEGER REFERENCES folder, name TEXT NOT NULL);
CREATE TABLE item (id INTEGER PRIMARY KEY, folder INTEGER NOT NULL REFERENCES folder, name TEXT NOT NULL,
    pane_name TEXT NOT NULL, style INTEGER, manufacturer INTEGER, picture BLOB, geometry BLOB);
CREATE INDEX folder_parent ON folder (parent);
CREATE INDEX item_folder ON item (folder);
INSERT INTO folder VALUES (1, NULL, 'All');
"""
# Closing the window tells nobody that its own size and place could not be kept.
STATE = "root/browser-state.json"
LISTS = "root/browser-lists.json"


def catalog(path, identifier, items):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    if os.path.exists(path):
        os.remove(path)
    database = sqlite3.connect(path)
    database.executescript(TABLES)
    database.execute("INSERT INTO catalog VALUES ('id', ?)", (identifier,))
    for number, name in enumerate(items):
        database.execute("INSERT INTO item VALUES (?, 1, ?, '', NULL, NULL, NULL, ?)", (number, name, noise(number, 3000)))
    database.commit()
    database.close()


def content_of(folder, identifier, items):
    """The bytes of such a catalog."""
    path = os.path.join(folder, "made.orvlib")
    catalog(path, identifier, items)
    with open(path, "rb") as file:
        content = file.read()
    os.remove(path)
    return content


class InWindow(Scenario):
    """Steps that the window takes on a root with two catalogs of the service and a library of the user's own."""

    steps = ()
    may_stay_old = (STATE,)

    def fill(self, sandbox):
        os.makedirs(os.path.join(sandbox, "home"))
        catalog(os.path.join(sandbox, "root/core/Doors.orvlib"), "doors", ["Oak door", "Pine door"])
        catalog(os.path.join(sandbox, "root/core/Lamps.orvlib"), "lamps", ["Torch"])
        catalog(os.path.join(sandbox, "root/user/Mine.orvlib"), "mine", ["Chair", "Stool"])
        write(os.path.join(sandbox, "root/user/Mine.orvlib.bak"), b"the former library")
        archive(os.path.join(sandbox, "root/textures/Mine.zip"), {"oak.jpg": noise(3, 5000)})

    def arguments(self, sandbox, service):
        return Window(self.steps)


class FilterSave(InWindow):
    """Makes a filter of what a search finds, beside those that are there."""

    name = "window-filter"
    steps = ("filter-save", "Garden", "Torch")
    kept_copies = ("root/core/catalog_filters.json.unreadable",)
    refused_when_done = "There is a filter"

    def before(self, sandbox, service):
        return [["filters", "add", "Kitchen", "doors"], ["filters", "add", "B\u00e4der", "lamps"]]


class FilterSaveUndo(FilterSave):
    """The same, taken back."""

    name = "window-filter-undo"
    steps = (*FilterSave.steps, "+", "undo")

    def between(self, sandbox, service):
        return [Window(FilterSave.steps)]


class FilterEdit(FilterSave):
    """Renames a filter in the editor."""

    name = "window-filter-edit"
    steps = ("filter-rename", "Kitchen", "Cellar")
    refused_when_done = "no filter Kitchen"


class FilterRemoveUndo(FilterSave):
    """Removes a filter that is in force, and takes that back."""

    name = "window-filter-remove-undo"
    steps = ("filter-remove", "Kitchen", "+", "undo")
    refused_when_done = "no filter Kitchen"

    def before(self, sandbox, service):
        return [*super().before(sandbox, service), ["filters", "use", "0"]]

    def between(self, sandbox, service):
        return [Window(self.steps[:2])]


class Import(InWindow):
    """Imports a library that is there already: the database is replaced and its textures are merged."""

    name = "window-import"
    may_lack_members = ("root/textures/Mine.zip",)
    all_or_nothing = ("root/textures/Mine.zip", "root/user/Mine.orvlib", "root/user/Mine.orvlib.bak")

    def fill(self, sandbox):
        super().fill(sandbox)
        database = content_of(os.path.join(sandbox, "input"), "mine", ["Bench", "Table"])
        archive(os.path.join(sandbox, "input/Mine.orvlibz"),
                {"Mine.orvlib": database, "textures/oak.jpg": noise(4, 40000), "textures/tile.png": b"tile" * 5000})

    def arguments(self, sandbox, service):
        return Window(["import", os.path.join(sandbox, "input/Mine.orvlibz")])


class ImportUndo(Import):
    """The same, taken back."""

    name = "window-import-undo"
    all_or_nothing = ()

    def arguments(self, sandbox, service):
        return Window([*super().arguments(sandbox, service), "+", "undo"])

    def between(self, sandbox, service):
        return [super().arguments(sandbox, service)]


class Refresh(ManufacturerRefresh):
    """Fetches newer manufacturer records through their preview."""

    name = "window-manufacturers"
    may_stay_old = (*ManufacturerRefresh.may_stay_old, STATE)
    refused_when_done = "The records are up to date."

    def fill(self, sandbox):
        InWindow.fill(self, sandbox)

    def before(self, sandbox, service):
        return [ManufacturerRefresh.arguments(self, sandbox, service)]

    def ready(self, sandbox, service):
        settings = {"manufacturerDataUrl": service["manufacturers"], "manufacturerLogoUrl": service["logos"]}
        write(os.path.join(sandbox, "root/settings.json"), json.dumps(settings).encode())

    def arguments(self, sandbox, service):
        return Window(["refresh"])


class UpdateInWindow(Update):
    """Updates core catalogs of which two changed and one is new, and a packed one."""

    name = "window-update"
    has_closing = False  # the window writes no trace
    # Of the note up to which run the news were seen; the next change of the lists removes it.
    kept_copies = ("root/temp/lists.lock",)
    # Deliberate: while nothing can be read, a refused catalog keeps its new line in the hash file, and the update says so.
    mended_by_verify = True
    # Only an update that changed an item writes news.
    seldom_written = ("root/catalog-news.json",)
    may_stay_old = (*Update.may_stay_old, STATE)

    def fill(self, sandbox):
        os.makedirs(os.path.join(sandbox, "home"))

    def content(self, folder, version):
        core = {"Doors": version, "T\u00fcren 2": version, "Same": 1, **({"Stairs": 1} if version == 2 else {})}
        for name, number in core.items():
            catalog(os.path.join(folder, f"content/{name}.orvlib"), name, [f"{name} {number}", "Plain"])
        database = content_of(os.path.join(folder, "made"), "party", [f"Lantern {version}"])
        archive(os.path.join(folder, "content/Party.orvlibz"),
                {"Party.orvlib": database, "pictures/one.jpg": noise(version + 60, 9000)})
        write(os.path.join(folder, "content/Orv_Core_Content_Index.txt"),
              "".join(f"{name}.orvlib\n" for name in core).encode())
        os.makedirs(os.path.join(folder, "manufacturers"))
        return True

    def before(self, sandbox, service):
        return [["update", "--url", service["redirect"], "--product", "P", "--product-version", "1", "--bonus",
                 "Party.orvlib"]]

    def ready(self, sandbox, service):
        settings = {"url": service["redirect"], "product": "P", "productVersion": "1", "bonus": ["Party.orvlib"]}
        write(os.path.join(sandbox, "root/settings.json"), json.dumps(settings).encode())

    def arguments(self, sandbox, service):
        return Window(["update"])


class Preferences(InWindow):
    """Changes settings of all programs, and one of the window."""

    name = "window-preferences"
    steps = ("prefer", "product", "Planner", "url", "http://127.0.0.1:9/redirect", "colours", "Dark")
    all_or_nothing = ("root/settings.json",)

    def fill(self, sandbox):
        super().fill(sandbox)
        write(os.path.join(sandbox, "root/settings.json"), b'{"url": "http://127.0.0.1:9/old", "retries": 1, "mine": [1]}')
        write(os.path.join(sandbox, "root/browser.json"), b'{"checkAgeHours": 6, "checkAtStart": false}')


class LibraryNew(InWindow):
    """Makes a library of the user's own."""

    name = "window-new"
    steps = ("library-new", "Bath")
    all_or_nothing = ("root/user/Bath.orvlib",)
    refused_when_done = "There is a library of that name already."


class Copy(InWindow):
    """Copies an item into it."""

    name = "window-copy"
    steps = ("copy", "Oak door", "Mine")
    all_or_nothing = ("root/user/Mine.orvlib",)


class ItemsUndo(InWindow):
    """Deletes an item and takes that back."""

    name = "window-items-undo"
    steps = ("item-delete", "Stool", "+", "undo")
    refused_when_done = "no item Stool"

    def between(self, sandbox, service):
        return [Window(self.steps[:2])]


class ItemRename(InWindow):
    """Renames an item that is a favourite."""

    name = "window-item-rename"
    may_lag = (LISTS,)
    # Favourites that could not be read when the window opened do not follow.
    may_stay_old = (STATE, LISTS)
    steps = ("item-rename", "Chair", "Sofa")
    refused_when_done = "no item Chair"

    def before(self, sandbox, service):
        return [Window(["favourite", "Chair"])]


class Rename(InWindow):
    """Renames a library with its textures and a favourite in it."""

    name = "window-rename"
    may_lag = (LISTS,)
    # Favourites that could not be read when the window opened do not follow.
    may_stay_old = (STATE, LISTS)
    steps = ("library-rename", "Mine", "Yours")
    refused_when_done = "no library Mine"
    never_lost = ("root/user/Mine.orvlib", "root/user/Mine.orvlib.bak", "root/textures/Mine.zip")
    # Deliberate: what belongs to the library has both names meanwhile, so that a library that is seen is whole.
    kept_copies = never_lost[1:]

    def before(self, sandbox, service):
        return [Window(["favourite", "Chair"])]


class Delete(InWindow):
    """Moves a library to the bin."""

    name = "window-delete"
    steps = ("library-delete", "Mine")
    refused_when_done = "no library Mine"
    never_lost = Rename.never_lost
    # Deliberate: the database goes first, and what belongs to it can wait for a library of its name.
    kept_copies = Rename.kept_copies


class DeleteUndo(Delete):
    """Takes it back from there."""

    name = "window-delete-undo"
    steps = (*Delete.steps, "+", "undo")

    def between(self, sandbox, service):
        return [Window(Delete.steps)]


class Favourite(InWindow):
    """Makes an item a favourite, beside another one; when done once more, no favourite."""

    name = "window-favourite"
    steps = ("favourite", "Oak door")

    def before(self, sandbox, service):
        return [Window(["favourite", "Torch"])]


ALL = [FilterSave(), FilterSaveUndo(), FilterEdit(), FilterRemoveUndo(), Import(), ImportUndo(), Refresh(),
       UpdateInWindow(), Preferences(), LibraryNew(), Copy(), ItemsUndo(), ItemRename(), Rename(), Delete(), DeleteUndo(),
       Favourite()]
