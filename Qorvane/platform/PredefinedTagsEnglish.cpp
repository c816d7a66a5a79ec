#include "platform/PredefinedTags.h"
#include "platform/TagText.h"

namespace Qorvane {

namespace {

// Repeats are kept: a word may belong to two subjects, and everyone who reads the list allows for it.
constexpr QStringView predefinedTagsEnglishText = uR"(
Portrait, Face, Person, People, Child, Baby, Kid, Toddler, Teenager, Adult, Elder, Senior, Man, Woman, Boy,
Girl, Male, Female, Family, Mother, Father, Parent, Grandmother, Grandfather, Sister, Brother, Couple,
Lovers, Friends, Group, Crowd, Team, Gathering, Meeting, Smile, Laughing, Happy, Sad, Serious, Thinking,
Sleeping, Eating, Walking, Running, Sitting, Standing, Dancing, Playing, Working, Reading, Talking, Hugging,
Kissing, Waving, Pointing, Holding, Carrying, Looking, Profile, Front View, Back View, Side View, Close Up,
Full Body, Half Body, Head, Hair, Eyes, Hands, Arms, Legs, Feet, Gesture, Expression, Wedding, Birthday,
Graduation, Celebration, Party, Festival, Vacation, Pets, Dog, Cat, Wildlife, Birds, Insects, Mammals, Fish,
Reptiles, Horse, Lion, Tiger, Elephant, Deer, Butterfly, Puppy, Kitten, Rabbit, Hamster, Guinea Pig, Parrot,
Canary, Goldfish, Turtle, Snake, Lizard, Frog, Toad, Spider, Bee, Ant, Ladybug, Dragonfly, Grasshopper,
Moth, Beetle, Fly, Mosquito, Cricket, Eagle, Owl, Hawk, Sparrow, Robin, Cardinal, Blue Jay, Pigeon, Dove,
Duck, Swan, Goose, Heron, Flamingo, Pelican, Seagull, Crow, Raven, Penguin, Ostrich, Peacock, Rooster, Hen,
Turkey, Woodpecker, Bear, Wolf, Fox, Raccoon, Squirrel, Chipmunk, Beaver, Otter, Seal, Whale, Dolphin,
Shark, Octopus, Jellyfish, Starfish, Crab, Lobster, Shrimp, Salmon, Tuna, Trout, Bass, Cod, Tropical Fish,
Cow, Bull, Sheep, Goat, Pig, Chicken, Duck, Donkey, Mule, Zebra, Giraffe, Hippo, Rhino, Monkey, Ape,
Gorilla, Chimpanzee, Kangaroo, Koala, Panda, Sloth, Armadillo, Hedgehog, Bat, Mouse, Rat, Landscape,
Seascape, Skyscape, Cityscape, Mountain, Forest, Desert, River, Lake, Ocean, Beach, Waterfall, Cave, Island,
Volcano, Glacier, Canyon, Meadow, Rocks, Ice, Valley, Hill, Cliff, Plateau, Prairie, Tundra, Swamp, Marsh,
Pond, Stream, Creek, Rapids, Geyser, Hot Spring, Dune, Oasis, Iceberg, Snow, Frost, Mist, Fog, Cloud, Storm,
Lightning, Tornado, Hurricane, Blizzard, Hail, Rain, Drizzle, Thunder, Peak, Ridge, Slope, Boulder, Pebble,
Sand, Gravel, Mud, Shore, Coast, Bay, Gulf, Peninsula, Cape, Harbor, Marina, Tide Pool, Reef, Lagoon,
Estuary, Delta, Fjord, Gorge, Ravine, Flowers, Tree, Leaf, Cactus, Garden, Wildflower, Mushroom, Moss,
Bonsai, Crop, Rose, Tulip, Sunflower, Daisy, Lily, Orchid, Carnation, Peony, Iris, Daffodil, Chrysanthemum,
Marigold, Violet, Jasmine, Lavender, Cherry Blossom, Apple Blossom, Magnolia, Hibiscus, Poppy, Lotus, Oak,
Pine, Maple, Birch, Willow, Elm, Cedar, Fir, Spruce, Palm, Bamboo, Eucalyptus, Redwood, Sequoia, Banyan,
Baobab, Fern, Vine, Ivy, Grass, Wheat, Corn, Rice, Barley, Oats, Vegetable, Fruit, Berry, Apple, Orange,
Banana, Grape, Strawberry, Tomato, Carrot, Potato, Lettuce, Cabbage, Broccoli, Pepper, Herb, Mint, Basil,
Rosemary, Thyme, Sage, Parsley, Cilantro, Architecture, Building, Skyscraper, Bridge, Castle, Church,
Temple, Lighthouse, Road, Sculpture, Ruins, Dam, Pier, Windmill, Monument, House, Cottage, Mansion,
Apartment, Condominium, Villa, Cabin, Office, Store, Shop, Mall, Market, Restaurant, Cafe, Bar, Hotel,
Motel, Hospital, School, University, Library, Museum, Theater, Cinema, Stadium, Arena, Gym, Pool, Spa, Park,
Playground, Garden, Greenhouse, Barn, Shed, Garage, Warehouse, Factory, Mill, Tower, Antenna, Chimney, Roof,
Wall, Fence, Gate, Door, Window, Balcony, Stairs, Elevator, Escalator, Arch, Column, Pillar, Dome, Spire,
Bell Tower, Clock Tower, Fountain, Statue, Memorial, Obelisk, Pyramid, Pagoda, Gazebo, Pavilion, Bandstand,
Kiosk, Booth, Tent, Marquee, Canopy, Car, Train, Airplane, Boat, Ship, Bicycle, Motorcycle, HotAirBalloon,
Bus, Truck, Van, SUV, Taxi, Limousine, Sports Car, Convertible, Sedan, Coupe, Hatchback, Pickup, Trailer,
RV, Camper, Subway, Metro, Tram, Trolley, Monorail, Cable Car, Funicular, Locomotive, Freight Train,
Passenger Train, High Speed Train, Jet, Helicopter, Glider, Seaplane, Fighter Jet, Cargo Plane, Sailboat,
Yacht, Cruise Ship, Ferry, Speedboat, Kayak, Canoe, Submarine, Aircraft Carrier, Battleship, Tugboat,
Fishing Boat, Scooter, Moped, ATV, Snowmobile, Jet Ski, Hovercraft, Skateboard, Roller Skates, Segway,
Golf Cart, Wheelchair, Food, Drink, Book, MusicalInstrument, Jewelry, Toy, Tool, Camera, Phone, Computer,
Laptop, Tablet, Television, Radio, Clock, Watch, Glasses, Sunglasses, Hat, Cap, Helmet, Crown, Bag,
Backpack, Purse, Suitcase, Briefcase, Wallet, Umbrella, Shoes, Boots, Sandals, Sneakers, High Heels,
Slippers, Shirt, Dress, Pants, Jeans, Skirt, Jacket, Coat, Sweater, Tie, Scarf, Gloves, Socks, Underwear,
Swimsuit, Uniform, Ring, Necklace, Earrings, Bracelet, Brooch, Pendant, Chain, Guitar, Piano, Violin, Drums,
Trumpet, Saxophone, Flute, Microphone, Speaker, Headphones, Amplifier, Synthesizer, Ball, Doll, Teddy Bear,
Puzzle, Board Game, Cards, Dice, Kite, Yo-yo, Top, Robot, Action Figure, Model, Lego, Hammer, Screwdriver,
Wrench, Saw, Drill, Knife, Scissors, Paintbrush, Pencil, Pen, Marker, Crayon, Ruler, Calculator, Candle,
Lamp, Flashlight, Mirror, Vase, Picture Frame, Pillow, Blanket, Towel, Soap, Shampoo, Toothbrush, Comb,
Brush, Bread, Cake, Pie, Cookie, Donut, Muffin, Cupcake, Ice Cream, Chocolate, Candy, Gum, Honey, Jam,
Butter, Cheese, Yogurt, Milk, Cream, Egg, Meat, Beef, Pork, Chicken, Fish, Seafood, Pasta, Pizza, Sandwich,
Burger, Hot Dog, Taco, Salad, Soup, Sushi, Noodles, Rice, Beans, Nuts, Seeds, Spice, Salt, Sugar, Coffee,
Tea, Juice, Soda, Water, Beer, Wine, Cocktail, Smoothie, Sunrise, Sunset, Moon, Stars, MilkyWay, Aurora,
Eclipse, Night, Weather, Rainbow, Sun, Full Moon, Crescent Moon, New Moon, Planet, Constellation, Comet,
Meteor, Shooting Star, Galaxy, Nebula, Solar System, Blue Sky, Cloudy Sky, Overcast, Clear Sky, Twilight,
Dawn, Dusk, Sunny, Partly Cloudy, Stormy, Windy, Calm, Humid, Dry, Hot, Cold, Wedding, Birthday, Party,
Celebration, Festival, Concert, Performance, Sports, Game, Competition, Race, Marathon, Tournament,
Championship, Meeting, Conference, Seminar, Workshop, Class, Lesson, Lecture, Shopping, Dining, Cooking,
Baking, Gardening, Cleaning, Reading, Writing, Drawing, Painting, Crafting, Sewing, Knitting, Dancing,
Singing, Playing, Exercise, Yoga, Meditation, Stretching, Walking, Running, Jogging, Hiking, Climbing,
Swimming, Diving, Surfing, Skiing, Snowboarding, Skating, Biking, Fishing, Hunting, Camping, Picnic,
Barbecue, Vacation, Travel, Sightseeing, Adventure, Exploration, Happy, Sad, Angry, Surprised, Scared,
Excited, Calm, Peaceful, Joyful, Cheerful, Smiling, Laughing, Crying, Worried, Anxious, Confident, Shy,
Proud, Embarrassed, Confused, Focused, Relaxed, Tired, Energetic, Playful, Serious, Romantic, Loving,
Caring, Red, Blue, Green, Yellow, Orange, Purple, Pink, Brown, Black, White, Gray, Silver, Gold, Beige, Tan,
Maroon, Navy, Teal, Lime, Cyan, Magenta, Violet, Indigo, Turquoise, Coral, Salmon, Khaki, Olive, Burgundy,
Crimson, Scarlet, Azure, Ivory, Pearl, Wood, Metal, Glass, Plastic, Fabric, Leather, Stone, Marble,
Concrete, Brick, Clay, Ceramic, Paper, Cardboard, Rubber, Foam, Silk, Cotton, Wool, Linen, Velvet, Denim,
Lace, Satin, Smooth, Rough, Soft, Hard, Shiny, Matte, Glossy, Textured, Circle, Square, Triangle, Rectangle,
Oval, Diamond, Heart, Star, Spiral, Zigzag, Stripes, Dots, Plaid, Floral, Geometric, Abstract, Symmetrical,
Asymmetrical, Curved, Straight, Angular, Rounded, Indoor, Outdoor, Left, Right, Center, Top, Bottom, Front,
Back, Near, Far, Close, Distant, High, Low, Up, Down, North, South, East, West, Corner, Edge, Middle, Side,
Behind, Beside, Above, Below, Morning, Afternoon, Evening, Night, Day, Today, Yesterday, Tomorrow, Weekend,
Holiday, Season, Spring, Summer, Fall, Winter, January, February, March, April, May, June, July, August,
September, October, November, December, Monday, Tuesday, Wednesday, Thursday, Friday, Saturday, Sunday,
Past, Present, Future, Vintage, Modern, Contemporary, Ancient, Old, New, Recent, Historic, Traditional
)";

} // namespace

const QStringList &predefinedTagsEnglish()
{
    static const QStringList tags = tagsOfText(predefinedTagsEnglishText, u',');
    return tags;
}

} // namespace Qorvane
